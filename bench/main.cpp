// zyn-bench: measures the library beside bare system calls, the same by hand, and what a user would take instead.
#include "bench/Bench.h"
#include "bench/Child.h"
#include "bench/Power.h"
#include "bench/Report.h"
#include "bench/Sampler.h"
#include "bench/Scale.h"
#include "bench/Window.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int kUsageError = 2;
constexpr Effort kFull{.repetitions = 21, .seconds = 0.1};
constexpr Effort kQuick{.repetitions = 7, .seconds = 0.02};
/// How long idle processes are watched, in seconds.
constexpr int kWatch = 60;
constexpr int kQuickWatch = 10;

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    for (const auto& some : {storeRows(), settingsRows(), messageRows(), channelRows(), serviceRows(), startUpRows()})
        rows.insert(rows.end(), some.begin(), some.end());
    return rows;
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(), "writing a file");
}

void show(int output, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    require(::write(output, bytes.constData(), static_cast<size_t>(bytes.size())) == bytes.size(), "the output");
}

std::vector<Row> chosenRows(const QString& filter)
{
    const QRegularExpression wanted(filter);
    std::vector<Row> rows;
    for (Row& row : allRows()) {
        if (wanted.isValid() && wanted.match(QString::fromStdString(row.name)).hasMatch())
            rows.push_back(std::move(row));
    }
    return rows;
}

Results measureAll(const std::vector<Row>& rows, const Effort& effort)
{
    Results results;
    for (const Row& row : rows) {
        std::fprintf(stderr, "bench: %zu of %zu: %s\n", results.size() + 1, rows.size(), row.name.c_str());
        results.push_back(measure(row, effort));
    }
    return results;
}

void startBenchmarks(char* name)
{
    std::array words = {std::string(name), std::string("--benchmark_enable_random_interleaving=true")};
    std::array<char*, 3> arguments = {words[0].data(), words[1].data(), nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments.data());
}

/// Shows @p text, and puts it under @p name into the document that is to be renewed.
void publish(const QCommandLineParser& options, int output, const QString& name, const QString& text)
{
    show(output, text);
    if (options.isSet(u"markdown"_s))
        replaceInDocument(options.value(u"markdown"_s), name, text);
}

int run(const QCommandLineParser& options, int output)
{
    const bool isQuick = options.isSet(u"quick"_s);
    if (options.isSet(u"scale"_s))
        publish(options, output, u"scale"_s, measureScale(isQuick ? kQuick : kFull));
    if (options.isSet(u"power"_s))
        publish(options, output, u"power"_s, measurePower(isQuick ? kQuickWatch : kWatch));
    if (options.isSet(u"window"_s))
        publish(options, output, u"window"_s, measureWindow(isQuick ? kQuickWatch : kWatch));
    if (options.isSet(u"scale"_s) || options.isSet(u"power"_s) || options.isSet(u"window"_s))
        return EXIT_SUCCESS;
    const std::vector<Row> rows = chosenRows(options.value(u"filter"_s));
    if (rows.empty()) {
        std::fputs("bench: no row is like that\n", stderr);
        return kUsageError;
    }
    if (options.isSet(u"list"_s)) {
        for (const Row& row : rows)
            show(output, QString::fromStdString(row.name) + u'\n');
        return EXIT_SUCCESS;
    }
    const Results results = measureAll(rows, isQuick ? kQuick : kFull);
    show(output, textTable(results) + machine() + u'\n');
    if (options.isSet(u"json"_s))
        write(options.value(u"json"_s), json(results));
    if (options.isSet(u"plot"_s))
        write(options.value(u"plot"_s), svg(results).toUtf8());
    if (options.isSet(u"markdown"_s))
        replaceInDocument(options.value(u"markdown"_s), u"table"_s,
                          markdownTable(results) + u"\nMeasured on "_s + machine() + u".\n"_s);
    return EXIT_SUCCESS;
}

} // namespace
} // namespace bench

int main(int argc, char** argv)
{
    if (const int code = bench::runRole(argc, argv); code >= 0)
        return code;
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.addOptions({{u"quick"_s, u"measures less"_s},
                        {u"list"_s, u"lists the rows"_s},
                        {u"scale"_s, u"measures how cost grows"_s},
                        {u"power"_s, u"measures what idle processes cost"_s},
                        {u"window"_s, u"measures the handset on the screen"_s},
                        {u"filter"_s, u"only rows like that"_s, u"regex"_s, u"."_s},
                        {u"json"_s, u"writes a file"_s, u"file"_s},
                        {u"plot"_s, u"writes a picture"_s, u"file"_s},
                        {u"markdown"_s, u"renews the tables of a document"_s, u"file"_s}});
    if (!options.parse(QCoreApplication::arguments())) {
        std::fprintf(stderr, "bench: %s\n", qPrintable(options.errorText()));
        return bench::kUsageError;
    }
    bench::startBenchmarks(argv[0]);
    return bench::run(options, bench::keepOutput());
}
