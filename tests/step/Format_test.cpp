// The format with programs in the place of the import program, which end in every way there is.
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cmath>
#include <csignal>
#include <map>

#include "StepReading.h"
#include "reader/ImportLimits.h"
#include "reader/formats/step/FileStart.h"
#include "reader/formats/step/ImportProtocol.h"

namespace step_tests {
namespace {

using ovdl::ReadOutcome;
using testing::HasSubstr;

constexpr char kStep[] = "ISO-10303-21;\nHEADER;\nENDSEC;\nDATA;\nENDSEC;\nEND-ISO-10303-21;\n";

std::string igesLine(const std::string& text, char section, const std::string& number)
{
    return text + std::string(72 - text.size(), ' ') + section + std::string(7 - number.size(), ' ') +
           number;
}

struct StartCase {
    const char* name;
    std::string start;
    ovdl::step::FileKind kind;
};
using ovdl::step::FileKind;

const StartCase kStarts[] = {
    {"step", kStep, FileKind::kStep},
    {"step_behind_blanks", " \r\n\tISO-10303-21;", FileKind::kStep},
    {"step_behind_a_byte_order_mark", "\xEF\xBB\xBFISO-10303-21;", FileKind::kOther},
    {"step_behind_a_comment", "/* made by us */ ISO-10303-21;", FileKind::kStep},
    {"step_with_blanks_before_the_semicolon", "ISO-10303-21 ;", FileKind::kOther},
    {"another_standard_of_the_family", "ISO-10303-28;", FileKind::kOther},
    {"a_longer_word", "ISO-10303-21X;", FileKind::kOther},
    {"a_comment_without_end", "/* ISO-10303-21;", FileKind::kOther},
    {"nothing", "", FileKind::kOther},
    {"iges", igesLine("start", 'S', "1") + "\n" + igesLine("1H,,1H;", 'G', "1"), FileKind::kIges},
    {"iges_without_line_ends", igesLine("", 'S', "1") + igesLine("1H,,1H;", 'G', "1"), FileKind::kIges},
    {"iges_with_zeros_in_the_number", igesLine("x", 'S', "0000001"), FileKind::kIges},
    {"another_section_first", igesLine("x", 'G', "1"), FileKind::kOther},
    {"the_second_line_first", igesLine("x", 'S', "2"), FileKind::kOther},
    {"the_eleventh_line_first", igesLine("x", 'S', "11"), FileKind::kOther},
    {"a_short_line", igesLine("x", 'S', "1").substr(0, 79), FileKind::kOther},
    {"a_line_end_in_the_text", "\n" + igesLine("x", 'S', "1").substr(1), FileKind::kOther},
};

class FileStart : public testing::TestWithParam<StartCase> {};
TEST_P(FileStart, TellsTheKind)
{
    EXPECT_EQ(ovdl::step::fileKindOf(GetParam().start), GetParam().kind);
}
INSTANTIATE_TEST_SUITE_P(Rows, FileStart, testing::ValuesIn(kStarts),
                         [](const auto& row) { return row.param.name; });

class StepFormat : public testing::Test {
protected:
    // A script in the place of the program. $@ are the arguments, 3 is the pipe and 4 the file.
    std::string script(const std::string& body) const
    {
        const std::string path = folder_.write("program", "#!/bin/sh\n" + body + "\n");
        chmod(path.c_str(), 0755);
        return path;
    }
    ReadOutcome readWith(const std::string& body, Context& context) const
    {
        const auto reader = format();
        const OtherProgram program(script(body));
        return reader->read(platform::fromUtf8(document_), context);
    }
    ReadOutcome readWith(const std::string& body) const
    {
        Context context;
        return readWith(body, context);
    }

    TemporaryFolder folder_;
    std::string document_ = folder_.write("box.stp", kStep);
};

TEST_F(StepFormat, RecognisesByContentWhateverTheEnding)
{
    std::string reason;
    EXPECT_TRUE(format()->recognises(platform::fromUtf8(document_), reason));
    EXPECT_TRUE(format()->recognises(platform::fromUtf8(folder_.write("box.txt", kStep)), reason));
    EXPECT_FALSE(format()->recognises(platform::fromUtf8(folder_.write("other.step", "solid\n")), reason));
    EXPECT_FALSE(format()->recognises(platform::fromUtf8(folder_ / "missing.stp"), reason));
    EXPECT_EQ(reason, "");
}

TEST_F(StepFormat, CannotOpenADocumentWithoutItsProgram)
{
    const auto reader = format();
    const OtherProgram program(folder_ / "ovdl-import");
    std::string reason;
    EXPECT_FALSE(reader->recognises(platform::fromUtf8(document_), reason));
    EXPECT_EQ(reason, "the program that imports STEP and IGES is missing: " + (folder_ / "ovdl-import"));
    reason.clear();
    EXPECT_FALSE(reader->recognises(platform::fromUtf8(folder_.write("other.txt", "text")), reason));
    EXPECT_EQ(reason, "");
}

TEST_F(StepFormat, TakesAFileThatNobodyMayRunForAMissingProgram)
{
    const auto reader = format();
    const OtherProgram program(folder_.write("ovdl-import", "no program"));
    std::string reason;
    EXPECT_FALSE(reader->recognises(platform::fromUtf8(document_), reason));
    EXPECT_THAT(reason, HasSubstr("is missing"));
}

TEST_F(StepFormat, TellsTheVersionOnceAndStartsNothingWhenItIsRefused)
{
    Context context;
    context.accepts = false;
    const auto outcome = readWith("touch '" + (folder_ / "started") + "'", context);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(context.versions, testing::ElementsAre(12000));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "started"));
}

struct EndCase {
    const char* name;
    const char* script;
    const char* reason;
};

const EndCase kEnds[] = {
    {"a_fault", "kill -SEGV $$", "the import program crashed on this file (signal 11)"},
    {"a_kill_by_others", "kill -KILL $$", "the import program was ended from outside (signal 9)"},
    {"a_request_to_end_by_others", "kill -TERM $$",
     "the import program was ended from outside (signal 15)"},
    {"a_fault_that_is_announced", "echo 'crashed 8' >&3; exit 3",
     "the import program crashed on this file (signal 8)"},
    {"no_processor_time_left", "echo 'crashed 24' >&3", "the import took longer than 600 seconds"},
    {"an_exit_without_a_word", "exit 0", "the import program ended without a result"},
    {"progress_and_no_more", "echo 'progress 0.5' >&3", "the import program ended without a result"},
    {"a_refusal", "echo 'refused the load check fails' >&3; exit 1", "the load check fails"},
    {"a_refusal_before_success", "echo 'refused why' >&3; echo 'ovdl-complete-1 0' >&3", "why"},
    {"no_memory", "echo 'no-memory ' >&3", "the import needs more memory than 8192 megabytes"},
    {"a_full_output", "echo 'output-full ' >&3", "the imported document is larger than 4096 megabytes"},
    {"more_in_the_file_than_it_says", "echo text >&4; echo 'ovdl-complete-1 4' >&3",
     "the import program handed over half a document"},
    {"less_in_the_file_than_it_says", "echo 'ovdl-complete-1 4' >&3",
     "the import program handed over half a document"},
    {"success_without_its_size", "echo 'ovdl-complete-1 many' >&3",
     "the import program says what nobody understands"},
    {"words_behind_success", "echo text >&4; echo 'ovdl-complete-1 5' >&3; echo 'progress 1' >&3",
     "the import program says what nobody understands"},
    {"half_a_line_behind_success", "echo text >&4; echo 'ovdl-complete-1 5' >&3; printf progress >&3",
     "the import program ended without a result"},
    {"half_a_last_line", "echo text >&4; printf 'ovdl-complete-1 5' >&3",
     "the import program ended without a result"},
    {"another_version_of_itself", "echo 'ovdl-complete-2 0' >&3",
     "the import program says what nobody understands"},
    {"a_line_without_end", "head -c 100000 /dev/zero >&3; sleep 60",
     "the import program says what nobody understands"},
    {"a_file_that_is_no_document", "echo text >&4; echo 'ovdl-complete-1 5' >&3",
     "the compound file cannot be read (0x80030050)"},
};

class ProgramEnd : public StepFormat, public testing::WithParamInterface<EndCase> {};
TEST_P(ProgramEnd, IsARejectedDocumentWithAReason)
{
    const auto outcome = readWith(GetParam().script);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, GetParam().reason);
}

// Where a host ignores its children, nobody learns how one ended.
TEST_P(ProgramEnd, IsARejectedDocumentForAHostThatIgnoresItsChildren)
{
    struct sigaction old;
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    ASSERT_EQ(sigaction(SIGCHLD, &ignore, &old), 0);
    const auto outcome = readWith(GetParam().script);
    sigaction(SIGCHLD, &old, nullptr);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    const std::string name = GetParam().name;
    if (name != "a_fault" && name != "a_kill_by_others" && name != "a_request_to_end_by_others")
        EXPECT_EQ(outcome.reason, GetParam().reason);
    else
        EXPECT_EQ(outcome.reason, "the import program ended without a result");
}
INSTANTIATE_TEST_SUITE_P(Rows, ProgramEnd, testing::ValuesIn(kEnds),
                         [](const auto& row) { return row.param.name; });

TEST_F(StepFormat, GivesAProgramThatCannotStartAsARejectedDocument)
{
    const auto reader = format();
    const OtherProgram program(folder_ / "missing");
    Context context;
    const auto outcome = reader->read(platform::fromUtf8(document_), context);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the import program cannot be started");
}

TEST_F(StepFormat, MakesOneShortLineOfWhatTheProgramSays)
{
    const auto outcome = readWith(
        "printf 'refused a\\tb\\177c\\033[31m' >&3; head -c 2000 /dev/zero | tr '\\0' x >&3; echo >&3");
    EXPECT_THAT(outcome.reason, testing::StartsWith("a b c [31mxxx"));
    EXPECT_LE(outcome.reason.size(), 500u);
    const auto cut =
        readWith("printf 'refused ' >&3; for i in $(seq 400); do printf 'x\303\251'; done >&3; echo >&3");
    EXPECT_EQ(cut.reason.size(), 499u);
    EXPECT_THAT(cut.reason, testing::EndsWith("\xC3\xA9x"));
}

TEST_F(StepFormat, EndsAProgramThatTakesTooLong)
{
    const ScopedVariable seconds("RAYLUME_IMPORT_SECONDS", "0.3");
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = readWith("while :; do echo 'progress 0.1' >&3; sleep 0.01; done");
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the import took longer than 0.3 seconds");
    EXPECT_LT(taken.count(), 3);
}

TEST_F(StepFormat, DoesNotWaitForAProgramThatHasClosedItsPipe)
{
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = readWith("exec 3>&-; sleep 60");
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_LT(taken.count(), 5);
}

TEST_F(StepFormat, HandsProgressOnAndNeverBackwards)
{
    Context context;
    readWith("for share in 0.1 0.5 2 -1 nan x; do echo \"progress $share\" >&3; done", context);
    ASSERT_EQ(context.shares.size(), 4u);
    EXPECT_FLOAT_EQ(context.shares[0], 0.095f);
    EXPECT_FLOAT_EQ(context.shares[1], 0.475f);
    EXPECT_FLOAT_EQ(context.shares[2], 0.95f);
    EXPECT_FLOAT_EQ(context.shares[3], 0);
}

int numberIn(const std::string& path)
{
    const std::string text = readFile(path);
    return text.empty() ? 0 : std::stoi(text);
}

TEST_F(StepFormat, CancelsWithinMomentsAndEndsTheProgram)
{
    Context context;
    const auto start = std::chrono::steady_clock::now();
    context.cancels = [&] {
        return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(500);
    };
    const auto outcome = readWith("echo $$ > '" + (folder_ / "number") + "'; exec sleep 60", context);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(outcome.kind, ReadOutcome::kCancelled);
    EXPECT_EQ(outcome.document, nullptr);
    EXPECT_LT(taken.count(), 2);
    const int program = numberIn(folder_ / "number");
    ASSERT_GT(program, 0);
    EXPECT_EQ(kill(program, 0), -1);
    // The middle one of the times between two questions, since a busy machine lengthens a few.
    std::vector<double> gaps;
    for (std::size_t i = 1; i < context.asked.size(); ++i)
        gaps.push_back(std::chrono::duration<double>(context.asked[i] - context.asked[i - 1]).count());
    ASSERT_FALSE(gaps.empty());
    std::nth_element(gaps.begin(), gaps.begin() + static_cast<long>(gaps.size() / 2), gaps.end());
    EXPECT_LE(gaps[gaps.size() / 2], 0.05);
}

TEST_F(StepFormat, IsCancelledByWhatEndsTheProgramToo)
{
    Context context;
    context.cancels = [&] { return std::filesystem::exists(folder_ / "cancelled"); };
    // In one go, so that nobody asks between the two.
    const auto outcome = readWith("touch '" + (folder_ / "cancelled") + "'; kill -INT $$", context);
    EXPECT_EQ(outcome.kind, ReadOutcome::kCancelled);
}

// The second question comes when the program has ended.
TEST_F(StepFormat, AsksOnceMoreWhenTheProgramHasEnded)
{
    Context context;
    int questions = 0;
    context.cancels = [&] {
        // The first one waits until the program is gone, so the next thing heard is its end.
        if (++questions == 1)
            while (!std::filesystem::exists(folder_ / "over"))
                usleep(1000);
        return questions > 1;
    };
    EXPECT_EQ(readWith("exec 3>&-; touch '" + (folder_ / "over") + "'; kill -INT $$", context).kind,
              ReadOutcome::kCancelled);
    EXPECT_EQ(questions, 2);
}

TEST_F(StepFormat, AsksBeforeItStartsAnything)
{
    Context context;
    context.cancels = [] { return true; };
    EXPECT_EQ(readWith("sleep 60", context).kind, ReadOutcome::kCancelled);
}

TEST_F(StepFormat, GivesTheProgramTwoHandlesAndThreeNullStreams)
{
    const std::string list = folder_ / "handles";
    const int leaked = dup(1);
    readWith("exec > '" + list +
             "'; for handle in /proc/$$/fd/*; do echo \"${handle##*/}\"; readlink $handle; done");
    close(leaked);
    std::vector<std::string> handles;
    std::string text = readFile(list);
    for (std::size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1))
        handles.push_back(text.substr(0, end));
    std::map<std::string, std::string> targets;
    for (std::size_t i = 0; i + 1 < handles.size(); i += 2)
        targets[handles[i]] = handles[i + 1];
    // The shell's own.
    std::erase_if(targets, [&](const auto& target) { return target.second == folder_ / "program"; });
    EXPECT_THAT(targets, testing::ElementsAre(testing::Pair("0", "/dev/null"), testing::Pair("1", list),
                                              testing::Pair("2", "/dev/null"),
                                              testing::Pair("3", testing::StartsWith("pipe:")),
                                              testing::Pair("4", testing::StartsWith("/memfd:"))));
}

TEST_F(StepFormat, HandsOnNothingOfTheEnvironmentButWhatLibrariesNeed)
{
    const ScopedVariable resources("CSF_STEPDefaults", "/elsewhere");
    const ScopedVariable libraries("LD_LIBRARY_PATH", "/nowhere");
    readWith("env > '" + (folder_ / "environment") + "'");
    const std::string text = readFile(folder_ / "environment");
    EXPECT_THAT(text, testing::Not(HasSubstr("CSF_")));
    EXPECT_THAT(text, HasSubstr("LD_LIBRARY_PATH=/nowhere\n"));
}

TEST_F(StepFormat, DoesNotHandOnWhatTheHostBlocksAndIgnores)
{
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    signal(SIGPIPE, SIG_IGN);
    readWith("exec > '" + (folder_ / "signals") +
             "'; while read line; do case $line in SigBlk*|SigIgn*) echo \"$line\";; esac; done < "
             "/proc/self/status");
    signal(SIGPIPE, SIG_DFL);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    // Two signals are the C library's own, which no program of its kind may send or ignore.
    EXPECT_THAT(readFile(folder_ / "signals"),
                testing::MatchesRegex("SigBlk:\t0{16}\nSigIgn:\t0{7}[01][08]0{7}\n"));
}

TEST_F(StepFormat, WorksForAHostWithoutStandardStreams)
{
    const int streams[] = {dup(0), dup(1), dup(2)};
    for (int stream = 0; stream < 3; ++stream)
        close(stream);
    const auto outcome = readWith("echo 'refused for a good reason' >&3");
    for (int stream = 0; stream < 3; ++stream) {
        dup2(streams[stream], stream);
        close(streams[stream]);
    }
    EXPECT_EQ(outcome.reason, "for a good reason");
}

TEST_F(StepFormat, LeavesNoChildAndNoHandleBehind)
{
    const auto handles = [] {
        const std::filesystem::directory_iterator list("/proc/self/fd");
        return std::distance(begin(list), end(list));
    };
    readWith("exit 0");
    const auto before = handles();
    for (const char* body : {"exit 0", "kill -SEGV $$", "echo text >&4; echo 'ovdl-complete-1 5' >&3"})
        readWith(body);
    EXPECT_EQ(handles(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

struct TessellationCase {
    const char* name;
    const char* text;
    double deflection;
    double degrees;
};

const TessellationCase kTessellations[] = {
    {"both_numbers", "0.01,5", 0.01, 5},
    {"an_exponent", "1e-4,12.5", 1e-4, 12.5},
    {"one_number", "0.01", 0.001, 20},
    {"no_number", "fine,very", 0.001, 20},
    {"zero", "0,5", 0.001, 20},
    {"the_finest", "1e-9,0.01", 1e-9, 0.01},
    {"a_share_below_the_finest", "0.9e-9,5", 0.001, 20},
    {"an_angle_below_the_finest", "0.01,0.009", 0.001, 20},
    {"a_negative_angle", "0.01,-5", 0.001, 20},
    {"more_than_a_half_turn", "0.01,181", 0.001, 20},
    {"more_than_the_whole_part", "1.5,20", 0.001, 20},
    {"not_finite", "inf,nan", 0.001, 20},
    {"a_decimal_comma", "0,01,5", 0.001, 20},
};

class TessellationText : public testing::TestWithParam<TessellationCase> {};
TEST_P(TessellationText, SaysBothNumbersOrNothing)
{
    const ScopedVariable text("RAYLUME_TESSELLATION", GetParam().text);
    EXPECT_EQ(ovdl::step::currentTessellation().deflection, GetParam().deflection);
    EXPECT_EQ(ovdl::step::currentTessellation().degrees, GetParam().degrees);
}
INSTANTIATE_TEST_SUITE_P(Rows, TessellationText, testing::ValuesIn(kTessellations),
                         [](const auto& row) { return row.param.name; });

TEST(ImportLimits, ComeFromTheEnvironmentUntilTheyAreSet)
{
    const ScopedVariable seconds("RAYLUME_IMPORT_SECONDS", "1.5");
    const ScopedVariable memory("RAYLUME_IMPORT_MEGABYTES", "100");
    const ScopedVariable output("RAYLUME_IMPORT_OUTPUT_MEGABYTES", "many");
    EXPECT_EQ(ovdl::step::currentLimits().seconds, 1.5);
    EXPECT_EQ(ovdl::step::currentLimits().memoryBytes, 104857600u);
    EXPECT_EQ(ovdl::step::currentLimits().outputBytes, std::uint64_t{4096} << 20);
}

TEST(ImportLimits, AreNeverNoneForBeingSmall)
{
    const ScopedVariable memory("RAYLUME_IMPORT_MEGABYTES", "0.0000001");
    const ScopedVariable output("RAYLUME_IMPORT_OUTPUT_MEGABYTES", "0");
    EXPECT_EQ(ovdl::step::currentLimits().memoryBytes, 1u);
    EXPECT_EQ(ovdl::step::currentLimits().outputBytes, 0u);
}

TEST_F(StepFormat, SaysSmallLimitsInBytes)
{
    const ScopedVariable output("RAYLUME_IMPORT_OUTPUT_MEGABYTES", "0.0000001");
    EXPECT_EQ(readWith("echo 'output-full ' >&3").reason, "the imported document is larger than 1 byte");
}

// In a process of their own: what is set stays.
TEST(ImportSettingsDeathTest, TakeSecondsThatAreNotFiniteForNoLimit)
{
    const auto set = [] {
        ovdl::setImportLimits({HUGE_VAL, 8, 9});
        const bool infinite = ovdl::step::currentLimits().seconds == 0;
        ovdl::setImportLimits({std::nan(""), 8, 9});
        _exit(infinite && ovdl::step::currentLimits().seconds == 0 ? 0 : 1);
    };
    EXPECT_EXIT(set(), testing::ExitedWithCode(0), "");
}

TEST(ImportSettingsDeathTest, GoBeforeTheEnvironmentOnceTheyAreSet)
{
    const auto set = [] {
        setenv("RAYLUME_IMPORT_SECONDS", "1.5", 1);
        setenv("RAYLUME_TESSELLATION", "0.01,5", 1);
        ovdl::setImportLimits({7, 8, 9});
        const bool refused = !ovdl::setTessellation({0, 5}) && !ovdl::setTessellation({0.1, 200}) &&
                             !ovdl::setTessellation({1e-10, 20}) && !ovdl::setTessellation({0.1, 0.009});
        const bool untouched = ovdl::step::currentTessellation().degrees == 5;
        const bool taken =
            ovdl::setTessellation({0.5, 90}) && ovdl::step::currentTessellation().degrees == 90;
        const auto limits = ovdl::step::currentLimits();
        const bool limited = limits.seconds == 7 && limits.memoryBytes == 8 && limits.outputBytes == 9;
        _exit(refused && untouched && taken && limited ? 0 : 1);
    };
    EXPECT_EXIT(set(), testing::ExitedWithCode(0), "");
}

TEST(ImportProtocol, TakesArgumentsApartAsTheyWerePutTogether)
{
    const ovdl::step::ImportRequest request{"/a b/c.stp", "c", {0.1, 1, 2}, {1e-300, 12.5}};
    const auto same = ovdl::step::requestOf(ovdl::step::argumentsOf(request));
    ASSERT_TRUE(same);
    EXPECT_EQ(same->path, request.path);
    EXPECT_EQ(same->stem, request.stem);
    EXPECT_EQ(same->limits.seconds, 0.1);
    EXPECT_EQ(same->limits.memoryBytes, 1u);
    EXPECT_EQ(same->limits.outputBytes, 2u);
    EXPECT_EQ(same->tessellation.deflection, 1e-300);
    EXPECT_EQ(same->tessellation.degrees, 12.5);
}

TEST(ImportProtocol, RefusesArgumentsOfAnotherVersionOrTooFew)
{
    auto arguments = ovdl::step::argumentsOf({});
    auto other = arguments;
    other[0] = "ovdl-import-0";
    EXPECT_FALSE(ovdl::step::requestOf(other));
    for (std::size_t i = 3; i < arguments.size(); ++i) {
        other = arguments;
        other[i] = "1,5";
        EXPECT_FALSE(ovdl::step::requestOf(other)) << i;
    }
    arguments.pop_back();
    EXPECT_FALSE(ovdl::step::requestOf(arguments));
    EXPECT_FALSE(ovdl::step::requestOf({}));
}

}  // namespace
}  // namespace step_tests
