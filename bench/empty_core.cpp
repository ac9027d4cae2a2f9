// The peer of ql240-clip: a program that starts and ends.
#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return 0;
}
