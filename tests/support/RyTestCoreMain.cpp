#include "support/RyTest.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    return ryRunTests(argc, argv);
}
