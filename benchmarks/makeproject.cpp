#include "benchmarks/syntheticproject.h"

#include <QCoreApplication>

#include <cstdio>

/// Writes a synthetic project, for measurements of the real program.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));

    const QStringList arguments = QCoreApplication::arguments();
    bool isNumber = false;
    const int count = arguments.value(1).toInt(&isNumber);
    if (arguments.size() != 3 || !isNumber || count < 0 ||
        count > SyntheticProject::maximumObjects) {
        std::fprintf(stderr, "usage: %s OBJECTS FILE, with 0 to %d objects\n", argv[0],
                     SyntheticProject::maximumObjects);
        return 2;
    }
    if (!SyntheticProject::write(arguments.at(2), count)) {
        std::fprintf(stderr, "%s can't be written\n", qPrintable(arguments.at(2)));
        return 1;
    }
    return 0;
}
