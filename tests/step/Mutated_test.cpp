// Real files with bytes changed in their data: whatever becomes of them, the host goes on, in time.
#include <array>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include "StepReading.h"

namespace step_tests {
namespace {

constexpr int kFiles = 12;
constexpr double kSeconds = 10;

int wantedCount()
{
    const char* wanted = std::getenv("RAYLUME_STEP_MUTANTS");
    return wanted ? std::atoi(wanted) : 60;
}

// Files of one part, of assemblies and of several programs.
std::vector<std::string> originals()
{
    std::vector<std::string> result;
    for (const char* name : {"cax-if/as1-oc-214.stp", "cax-if/as1-tu-203.stp", "cax-if/as1_pe_203.stp",
                             "cax-if/dm1-id-214.stp", "cax-if/dm1-pe-214.stp", "cax-if/sg1-c5-214.stp",
                             "cax-if/s1-c5-214/MAINBODY_BACK.stp", "cax-if/s1-tu-203/tailturbine.stp",
                             "cax-if/s1_pe_214/head_back_prt.stp", "conical-surface/conical-surface.step",
                             "rounded-cube/rounded-cube.step", "cube-fcstd/cube2.step"})
        result.push_back(readFile(sample(name)));
    return result;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Whether the digit belongs to a number with a point, which may be anything without breaking a reference.
bool isInReal(const std::string& bytes, std::size_t at)
{
    std::size_t begin = at;
    while (begin > 0 && (isDigit(bytes[begin - 1]) || bytes[begin - 1] == '.' || bytes[begin - 1] == 'E'))
        --begin;
    std::size_t end = at;
    while (end < bytes.size() && (isDigit(bytes[end]) || bytes[end] == '.' || bytes[end] == 'E'))
        ++end;
    return bytes[begin] != '#' && bytes.substr(begin, end - begin).find('.') != std::string::npos;
}

// What gets past the checks of the grammar does more harm: most changes are to digits.
std::string mutated(std::string bytes, std::mt19937& random)
{
    static const std::string kBytes = "0123456789.-+E#$*'(),;= ABCTFU_\\/\n\x01\xFF";
    enum {
        kAnyByte,
        kAnyDigit,
        kRealDigit
    } const way = std::array{kAnyByte, kAnyDigit, kRealDigit, kRealDigit}[random() % 4];
    std::uniform_int_distribution<std::size_t> place(bytes.find("DATA;") + 5, bytes.rfind("ENDSEC;") - 1);
    const int count = std::uniform_int_distribution<int>(1, 4)(random);
    for (int changed = 0; changed < count;) {
        const std::size_t at = place(random);
        if ((way != kAnyByte && !isDigit(bytes[at])) || (way == kRealDigit && !isInReal(bytes, at)))
            continue;
        bytes[at] = way == kAnyByte ? kBytes[random() % kBytes.size()]
                                    : "01234567899E."[random() % (way == kRealDigit ? 13 : 11)];
        ++changed;
    }
    return bytes;
}

struct Tally {
    std::map<std::string, int> endings;
    double longest = 0;
};

std::string kindOf(const ovdl::ReadOutcome& outcome)
{
    if (outcome.kind == ovdl::ReadOutcome::kRead)
        return "loaded";
    for (const char* word : {"crashed", "took longer", "more memory", "larger than", "load check"})
        if (outcome.reason.find(word) != std::string::npos)
            return word;
    return "refused otherwise";
}

// Everything that a load looks at lies inside its arrays.
void touchAll(const ovdl::ReadOutcome& outcome)
{
    const Box box = boxOf(outcome);
    EXPECT_LE(box.min[0], box.max[0]);
}

TEST(MutatedStepFiles, EndWithinTheirLimitsAndNeverWithTheHost)
{
    SKIP_WITHOUT_SAMPLES();
    const ScopedVariable seconds("RAYLUME_IMPORT_SECONDS", std::to_string(kSeconds));
    const ScopedVariable memory("RAYLUME_IMPORT_MEGABYTES", "2048");
    const std::vector<std::string> files = originals();
    ASSERT_EQ(files.size(), std::size_t{kFiles});
    const TemporaryFolder folder;
    std::mt19937 random(20240607);
    Tally tally;
    for (int i = 0; i < wantedCount(); ++i) {
        const std::string path =
            folder.write("mutant.stp", mutated(files[static_cast<std::size_t>(i) % files.size()], random));
        const auto start = std::chrono::steady_clock::now();
        const auto outcome = read(path);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        tally.longest = std::max(tally.longest, taken.count());
        ++tally.endings[kindOf(outcome)];
        ASSERT_LT(taken.count(), kSeconds + 3) << "mutant " << i;
        if (outcome.kind == ovdl::ReadOutcome::kRead)
            touchAll(outcome);
        else
            EXPECT_NE(outcome.reason, "") << "mutant " << i;
    }
    for (const auto& [ending, count] : tally.endings)
        std::cout << ending << ": " << count << '\n';
    std::cout << "longest: " << tally.longest << " s\n";
}

}  // namespace
}  // namespace step_tests
