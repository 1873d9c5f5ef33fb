#include "session/regression_resume.h"

#include "core/text.h"
#include "session/regression_lines.h"

#include <charconv>
#include <string>
#include <vector>

namespace quillmere {
namespace {

// Takes a line apart from the left. Every step returns false, and leaves the line as it was, where
// the text does not begin so.
class CLine {
public:
    explicit CLine(std::string_view text) : m_rest(text) {}

    bool Take(std::string_view words) {
        if (!m_rest.starts_with(words))
            return false;
        m_rest.remove_prefix(words.size());
        return true;
    }
    template <typename TNumber>
    bool TakeNumber(TNumber& number) {
        const auto [end, error] =
            std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), number);
        if (error != std::errc())
            return false;
        m_rest.remove_prefix(static_cast<std::size_t>(end - m_rest.data()));
        return true;
    }
    // " M1"
    bool TakePass(std::optional<int>& pass) {
        CLine copy = *this;
        int number = 0;
        if (!copy.Take(" M") || !copy.TakeNumber(number) || number < 0 || number > 1)
            return false;
        pass = number;
        *this = copy;
        return true;
    }
    std::string_view Rest() const { return m_rest; }

private:
    std::string_view m_rest;
};

// " (5 msec)" with `ending` as the end of the line.
bool TakeTimeAtEnd(std::string_view& text, std::string_view ending, u64& milliseconds) {
    const std::size_t open = text.rfind(" (");
    if (open == std::string_view::npos)
        return false;
    CLine time(text.substr(open));
    u64 number = 0;
    if (!time.Take(" (") || !time.TakeNumber(number) || !time.Take(" msec)") ||
        time.Rest() != ending)
        return false;
    milliseconds = number;
    text = text.substr(0, open);
    return true;
}

// "[SnglSolution, 1thrd(s)] "
bool TakeThreadText(CLine& line, TTestResult& result) {
    CLine copy = line;
    if (!copy.Take("["))
        return false;
    if (copy.Take("SnglSolution,"))
        result.mode = kSolveFirst;
    else if (copy.Take("AllSolutions,"))
        result.mode = kSolveAll;
    else
        return false;
    while (copy.Take(" ")) {
    }
    if (!copy.TakeNumber(result.threads) || !copy.Take("thrd(s)] "))
        return false;
    line = copy;
    return true;
}

std::vector<TToldMove> MovesOf(std::string_view text) {
    std::vector<TToldMove> moves;
    if (text == "No solution")
        return moves;
    while (true) {
        const std::size_t comma = text.find(", ");
        moves.push_back({std::string(text.substr(0, comma)), ""});
        if (comma == std::string_view::npos)
            return moves;
        text.remove_prefix(comma + 2);
    }
}

class CLogReader {
public:
    TLoggedTests Read(std::string_view text);

private:
    // Where the lines of a failed test stand, from "found:" on.
    enum class EBlock { kNone, kBeforeFound, kFound, kExpected };

    void ReadLine(std::string_view line);
    bool ReadListLine(std::string_view line);
    bool ReadResultLine(std::string_view line);
    bool ReadEndLine(std::string_view line);
    void Keep(TLoggedTest test) {
        const std::pair key(test.result.number, test.result.pass);
        m_last = &m_tests.insert_or_assign(key, std::move(test)).first->second;
    }

    TLoggedTests m_tests;
    EBlock m_block = EBlock::kNone;
    TLoggedTest m_failed;           // until its block is whole
    TLoggedTest* m_last = nullptr;  // the test whose lists may go on
};

TLoggedTests CLogReader::Read(std::string_view text) {
    while (true) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos)
            return std::move(m_tests);
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        ReadLine(line);
    }
}

void CLogReader::ReadLine(std::string_view line) {
    if (m_block != EBlock::kNone && ReadListLine(line))
        return;
    m_block = EBlock::kNone;
    if (line.ends_with(kCutMark))
        return;
    if (!ReadResultLine(line))
        ReadEndLine(line);
}

// A failed test counts as told once its second list begins: from there on the verdict is certain,
// and nothing marks the end of the list.
bool CLogReader::ReadListLine(std::string_view line) {
    if (m_block == EBlock::kBeforeFound) {
        if (line != "\tfound:")
            return false;
        m_block = EBlock::kFound;
        return true;
    }
    if (m_block == EBlock::kFound && line == "\tshould be:") {
        m_block = EBlock::kExpected;
        Keep(m_failed);
        return true;
    }
    if (!line.starts_with("\t\t") || line.ends_with(kCutMark))
        return false;
    std::vector<TToldMove>& list =
        m_block == EBlock::kFound ? m_failed.result.found : m_last->result.expected;
    list.push_back({std::string(line.substr(2)), ""});
    return true;
}

bool CLogReader::ReadResultLine(std::string_view text) {
    CLine line(text);
    TLoggedTest test;
    TTestResult& result = test.result;
    result.isFromLog = true;
    test.hasResultLine = true;
    if (!TakeThreadText(line, result))
        return false;
    const bool isTest = line.Take("Test #");
    if ((!isTest && !line.Take("Prob.#")) || !line.TakeNumber(result.number) ||
        !line.TakePass(result.pass) || !line.Take(isTest ? "" : " "))
        return false;
    std::string_view rest = line.Rest();
    if (!isTest) {
        if (!TakeTimeAtEnd(rest, ".", result.milliseconds))
            return false;
        result.verdict = ETestVerdict::kNotStated;
        result.found = MovesOf(rest);
        Keep(std::move(test));
        return true;
    }
    if (rest == " failed:") {
        result.verdict = ETestVerdict::kDifferent;
        m_failed = std::move(test);
        m_block = EBlock::kBeforeFound;
        return true;
    }
    if (CLine failed(rest); failed.Take(" failed: ")) {
        result.verdict = ETestVerdict::kDifferent;
        result.remark = failed.Rest();
        Keep(std::move(test));
        return true;
    }
    if (!TakeTimeAtEnd(rest, ".", result.milliseconds) &&
        !TakeTimeAtEnd(rest, " - ExpectedSortWhiteMovesOnly.", result.milliseconds))
        return false;
    if (rest != " ok")
        return false;
    result.verdict = ETestVerdict::kAsExpected;
    Keep(std::move(test));
    return true;
}

bool CLogReader::ReadEndLine(std::string_view text) {
    CLine line(text);
    i32 number = 0;
    std::optional<int> pass;
    if (!line.Take("Test #") || !line.TakeNumber(number))
        return false;
    line.TakePass(pass);
    using enum ETestEnd;
    for (const ETestEnd end :
         {kSkipped, kUndecided, kFaulty, kLineOk, kLineFailed, kLineUndecided}) {
        if (!line.Take(" " + std::string(TestEndWord(end)) + ": "))
            continue;
        const bool isLine = end == kLineOk || end == kLineFailed || end == kLineUndecided;
        const auto before = m_tests.find({number, pass});
        if (isLine && before == m_tests.end())
            return false;
        TLoggedTest test;
        if (isLine)
            test = before->second;
        test.result.number = number;
        test.result.pass = pass;
        test.result.isFromLog = true;
        if (!isLine) {
            test.result.verdict = end == kSkipped     ? ETestVerdict::kSkipped
                                  : end == kUndecided ? ETestVerdict::kUndecided
                                                      : ETestVerdict::kFaulty;
        } else {
            test.isLineWalked = true;
            if (end == kLineFailed)
                test.result.verdict = ETestVerdict::kDifferent;
            else if (end == kLineUndecided && test.result.verdict != ETestVerdict::kDifferent)
                test.result.verdict = ETestVerdict::kUndecided;
        }
        if (end != kLineOk && test.result.remark.empty())
            test.result.remark = line.Rest();
        Keep(std::move(test));
        return true;
    }
    return false;
}

}  // namespace

TLoggedTests ReadRegressionLog(std::string_view text) {
    return CLogReader().Read(text);
}

}  // namespace quillmere
