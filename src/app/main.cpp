#include "app/start_up.h"

int main(int argc, char** argv) {
    return ql240::startUp(argc, argv);
}
