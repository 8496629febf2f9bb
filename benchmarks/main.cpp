#include "benchmarks/benchmarksupport.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

/// Time of the store and the generators on synthetic projects. Options are those of Google
/// Benchmark, such as --benchmark_filter=open.
int main(int argc, char **argv)
{
    // Working copies belong into the folder that goes away, not among the user's files.
    qputenv("XDG_DATA_HOME", BenchmarkSupport::folder().toUtf8());
    qputenv("XDG_CONFIG_HOME", BenchmarkSupport::folder().toUtf8());
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
