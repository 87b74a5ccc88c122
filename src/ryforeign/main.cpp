#include "ryforeign/RyForeignChild.h"
#include "ryforeign/RyForeignRead.h"

int main(int argc, char **argv)
{
    RyForeignChild::run(argc, argv, ryReadForeign);
}
