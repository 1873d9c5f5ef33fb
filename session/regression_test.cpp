#include "session/regression_test.h"

#include "core/chess_exception.h"
#include "session/mirror.h"
#include "session/regression_log.h"
#include "session/regression_run.h"

#include <algorithm>

namespace quillmere {
namespace {

// The settings of the front during a run; given back at its end.
class CRunSettings {
public:
    CRunSettings(TSessionSettings& settings, u32 limitSeconds)
        : m_settings(settings),
          m_limitSeconds(settings.solvingTimeLimitSeconds),
          m_wasRunning(settings.regressionRunning) {
        settings.solvingTimeLimitSeconds = std::min(settings.solvingTimeLimitSeconds, limitSeconds);
        settings.regressionRunning = true;
    }
    ~CRunSettings() {
        m_settings.solvingTimeLimitSeconds = m_limitSeconds;
        m_settings.regressionRunning = m_wasRunning;
    }
    CRunSettings(const CRunSettings&) = delete;
    CRunSettings& operator=(const CRunSettings&) = delete;

private:
    TSessionSettings& m_settings;
    const u32 m_limitSeconds;
    const bool m_wasRunning;
};

u32 LimitOf(const TRegressionRequest& request) {
    return request.isQuick ? std::min(request.timeLimitSeconds, kQuickLimitSeconds)
                           : request.timeLimitSeconds;
}

TLoggedTests TakeUpLog(CRegressionLog& log, const TProblemCollection& collection) {
    TLoggedTests logged = ReadRegressionLog(log.TakeUp());
    for (const auto& [key, test] : logged) {
        if (collection.Find(key.first) == nullptr)
            throw ChessException(EMessage::kRegressionLogOfOtherFile,
                                 {log.File().string(), std::to_string(key.first)});
    }
    return logged;
}

}  // namespace

std::vector<std::pair<TChessProblem*, std::vector<int>>>
PlannedTests(const TProblemCollection& collection, const TRegressionRequest& request) {
    std::vector<std::pair<TChessProblem*, std::vector<int>>> plans;
    for (const auto& [number, problem] : collection.problems) {
        if (number < request.first || number > request.last)
            continue;
        std::vector<int> passes;
        if (!problem->Has(kProblemMirrorOnly))
            passes.push_back(0);
        if (request.withMirror && !problem->Has(kProblemNoMirror) && IsMirrorPossible(*problem))
            passes.push_back(1);
        plans.emplace_back(problem.get(), std::move(passes));
    }
    return plans;
}

CRegressionTest::~CRegressionTest() {
    Stop();
    if (m_thread.joinable())
        m_thread.join();
}

bool CRegressionTest::StartRegressionTest(bool quick, const CSolveControl& control) {
    IQuestionService& questions = *m_wiring.services.questions;
    const ELanguage language = m_wiring.settings.language;
    const bool isSolving =
        std::ranges::any_of(m_wiring.collection.problems,
                            [&](const auto& entry) { return control.IsRunning(*entry.second); });
    if (isSolving || m_wiring.settings.regressionRunning) {
        questions.Tell(EMessage::kTitleSessionInformation,
                       FormatMessage(EMessage::kRegressionSolvingPending, language));
        return false;
    }
    const EReply reply = questions.Ask(EMessage::kRegressionQuestion,
                                       FormatMessage(EMessage::kRegressionQuestion, language));
    if (reply == EReply::kCancel)
        return false;
    if (m_thread.joinable())
        m_thread.join();
    const std::filesystem::path logFile(kRegressionLogName);
    CRegressionLog(logFile).Rotate();
    m_isStopWished.store(false);
    m_failure = nullptr;
    m_wiring.settings.regressionRunning = true;
    const bool withMirror = reply == EReply::kYes;
    m_thread = std::thread(
        [this, withMirror, quick, logFile] { RegressionThreadProc(withMirror, quick, logFile); });
    return true;
}

void CRegressionTest::RegressionThreadProc(bool withMirror,
                                           bool quick,
                                           const std::filesystem::path& logFile) {
    TRegressionRequest request;
    request.withMirror = withMirror;
    request.isQuick = quick;
    request.logFile = logFile;
    try {
        Run(request);
    } catch (...) {
        m_failure = std::current_exception();
    }
    m_wiring.settings.regressionRunning = false;
    m_wiring.services.repaint->Repaint();
}

void CRegressionTest::Wait() {
    if (m_thread.joinable())
        m_thread.join();
    if (m_failure)
        std::rethrow_exception(std::exchange(m_failure, nullptr));
}

TRegressionSummary CRegressionTest::Run(const TRegressionRequest& request,
                                        const std::function<bool()>& isStopWished) {
    CRegressionLog log(request.logFile);
    TLoggedTests logged;
    if (request.isResumed)
        logged = TakeUpLog(log, m_wiring.collection);
    else
        log.Rotate();
    const CRunSettings settings(m_wiring.settings, LimitOf(request));
    return CRegressionRun(m_wiring,
                          request,
                          log,
                          std::move(logged),
                          [&] { return m_isStopWished.load() || (isStopWished && isStopWished()); })
        .Run();
}

bool MayChangeLanguage(const TSessionSettings& settings, IQuestionService& questions) {
    if (!settings.regressionRunning)
        return true;
    questions.Tell(EMessage::kTitleSessionInformation,
                   FormatMessage(EMessage::kRegressionLanguageFixed, settings.language));
    return false;
}

}  // namespace quillmere
