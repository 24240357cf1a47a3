#include "Core/Main.h"

int main(int argc, char** argv)
{
    return Core::Main(argc, argv);
}
