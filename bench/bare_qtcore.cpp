// The floor for bench/command-cost.py: a program that starts QtCore and does
// nothing else, measured in the same run as the commands.
#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    return 0;
}
