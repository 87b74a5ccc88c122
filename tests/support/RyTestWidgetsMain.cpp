#include "support/RyTest.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    return ryRunTests(argc, argv);
}
