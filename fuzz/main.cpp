// zyn-fuzz: all targets in one program, which is given one of them; scripts/fuzz runs it.
//
//     zyn-fuzz --list                    names the targets
//     zyn-fuzz --seeds=FOLDER            writes the inputs that targets begin with: FOLDER/TARGET/NUMBER
//     zyn-fuzz --target=TARGET ...       fuzzes; what follows are libFuzzer's options, folders and files
#include "fuzz/Fuzz.h"

#include "platform/QuietTrace.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Setup.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace zyn::fuzz {
namespace {

const Target* s_target = nullptr;
std::FILE* s_report = nullptr;

template<typename Visit>
void forEachTarget(Visit visit)
{
    for (const auto targets : {messageTargets(), channelTargets(), socketTargets(), modemTargets(), fileTargets(),
                               textTargets(), storeTargets(), activityTargets(), conversationTargets()}) {
        for (const Target& target : targets)
            visit(target);
    }
}

int list()
{
    forEachTarget([](const Target& target) { std::printf("%s\t%s\n", target.name, target.reads); });
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int writeSeeds(const QString& folder)
{
    forEachTarget([&](const Target& target) {
        const QDir directory(folder + u'/' + QLatin1String(target.name));
        require(directory.mkpath(QStringLiteral(".")), "the folder of the seeds can be made");
        int number = 0;
        for (const QByteArray& seed : target.seeds())
            writeFile(directory.filePath(QString::number(++number)), seed);
    });
    return EXIT_SUCCESS;
}

/// Does what the option @p argument says, which libFuzzer passes over.
void obey(std::string_view argument, const QuietTrace& trace)
{
    constexpr std::string_view kTarget = "--target=";
    constexpr std::string_view kSeeds = "--seeds=";
    if (argument == "--list") {
        ::dup2(::fileno(trace.output()), STDOUT_FILENO);
        std::exit(list());
    }
    if (argument.starts_with(kSeeds)) {
        argument.remove_prefix(kSeeds.size());
        std::exit(writeSeeds(QFile::decodeName(QByteArray(argument.data(), std::ssize(argument)))));
    }
    if (argument.starts_with(kTarget)) {
        argument.remove_prefix(kTarget.size());
        forEachTarget([&](const Target& target) {
            if (argument == target.name)
                s_target = &target;
        });
    }
}

} // namespace

void require(bool condition, const char* rule, const char* file, int line)
{
    if (condition)
        return;
    std::fprintf(s_report ? s_report : stderr, "%s:%d: it does not hold that %s\n", file, line, rule);
    std::fflush(nullptr);
    std::abort();
}

Folder::Folder()
{
    const QByteArray path = QFile::encodeName(m_directory.path());
    for (const char* place : {"ZYN_APP_WRITE_PATH", "ZYN_LOCAL_APP_WRITE_PATH", "ZYN_QCOP_PATH"})
        qputenv(place, path);
    QDir(m_directory.path()).mkdir(QStringLiteral("phone"));
    QDir(m_directory.path()).mkdir(QStringLiteral("setup"));
    forget();
}

Folder::~Folder()
{
    forget();
}

void Folder::forget()
{
    ActivityLog_ENG_RecordStore::destroy();
    RecentCall_ENG_RecordStore::destroy();
    RecentCall_Setup::destroy();
}

} // namespace zyn::fuzz

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    using namespace zyn::fuzz;
    static const QuietTrace trace;
    static const QCoreApplication application(*argc, *argv);
    // libFuzzer may close standard error, where readers complain of what they are given.
    s_report = ::fdopen(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1), "w");
    for (const char* argument : std::span(*argv, static_cast<size_t>(*argc)))
        obey(argument, trace);
    if (!s_target) {
        std::fputs("zyn-fuzz: --target=TARGET is missing; --list names them\n", stderr);
        std::exit(2);
    }
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    zyn::fuzz::Input input(std::as_bytes(std::span(data, size)));
    zyn::fuzz::s_target->run(input);
    return 0;
}
