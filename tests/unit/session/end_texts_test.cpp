#include "session/end_texts.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr ELanguage kPolish = ELanguage::kPolish;
constexpr ELanguage kEnglish = ELanguage::kEnglish;
constexpr ELanguage kUkrainian = ELanguage::kUkrainian;

TEndOfSolve End(std::vector<TSolutionText> solutions) {
    TEndOfSolve end;
    end.problemNumber = 17;
    end.moves = 5;
    end.solutions = std::move(solutions);
    end.milliseconds = 1250;
    end.isProved = true;
    return end;
}

struct TBoxRow {
    int solutions;
    int stopAfterKeys;
    const char* english;
    const char* polish;
    const char* ukrainian;
};

TEST(EndTexts, SeveralSolutions_AreToldByTheStopOptionThatEndedTheSearch) {
    constexpr TBoxRow kRows[] = {
        {2,
         0,
         "More than one solution found: 2",
         "Znaleziono więcej niż jedno rozwiązanie: 2",
         "Знайдено більше одного розв'язку: 2"},
        {2,
         2,
         "Search for solutions has been stopped after detection of dual.",
         "Poszukiwanie rozwiązań zatrzymano po wykryciu dualu.",
         "Пошук розв'язків зупинено після виявлення дуалі."},
        {3,
         3,
         "Search for solutions has been stopped after finding 3 solutions",
         "Poszukiwanie rozwiązań zatrzymano po znalezieniu 3 rozwiązań",
         "Пошук розв'язків зупинено після знаходження 3 розв'язків"},
        {4,
         4,
         "Search for solutions has been stopped after finding 4 solutions",
         "Poszukiwanie rozwiązań zatrzymano po znalezieniu 4 rozwiązań",
         "Пошук розв'язків зупинено після знаходження 4 розв'язків"},
        {2,
         3,
         "More than one solution found: 2",
         "Znaleziono więcej niż jedno rozwiązanie: 2",
         "Знайдено більше одного розв'язку: 2"},
    };
    for (const TBoxRow& row : kRows) {
        TEndOfSolve end = End(std::vector<TSolutionText>(row.solutions, {"1.Qa1-a8", ""}));
        end.stopAfterKeys = row.stopAfterKeys;
        EXPECT_EQ(ResultBoxText(end, kEnglish), row.english);
        EXPECT_EQ(ResultBoxText(end, kPolish), row.polish);
        EXPECT_EQ(ResultBoxText(end, kUkrainian), row.ukrainian);
    }
}

TEST(EndTexts, OneSolution_HasNoBox) {
    EXPECT_EQ(ResultBoxText(End({{"1.Qa1-a8", ""}}), kEnglish), "");
}

TEST(EndTexts, Answer_HasThreatsAndTime) {
    const TEndOfSolve end = End({{"1.Qa1-a8", "2.Qa8-h8#"}, {"1.Ra2-a7+", ""}});
    EXPECT_EQ(AnswerText(end, kEnglish), "1.Qa1-a8 threat: 2.Qa8-h8#\n1.Ra2-a7+ (1.25 sec.)");
    EXPECT_EQ(AnswerText(end, kPolish), "1.Qa1-a8 groźba: 2.Qa8-h8#\n1.Ra2-a7+ (1.25 s)");
    EXPECT_EQ(AnswerText(end, kUkrainian), "1.Qa1-a8 загроза: 2.Qa8-h8#\n1.Ra2-a7+ (1.25 с)");
}

TEST(EndTexts, AnswerOfAStoppedSearch_SaysSo) {
    TEndOfSolve end = End({{"1.Qa1-a8", ""}});
    end.isStopped = true;
    EXPECT_EQ(AnswerText(end, kEnglish), "1.Qa1-a8 (1.25 sec.) (stopped by user)");
    end.solutions.clear();
    EXPECT_EQ(AnswerText(end, kEnglish), "Analysis stopped by user");
    EXPECT_EQ(ResultBoxText(end, kEnglish), "");
}

TEST(EndTexts, AnswerAtTheTimeLimit_DoesNotBlameTheUser) {
    TEndOfSolve end = End({{"1.Qa1-a8", ""}});
    end.isStopped = true;
    end.isTimeLimitHit = true;
    EXPECT_EQ(AnswerText(end, kEnglish), "1.Qa1-a8 (1.25 sec.) (stopped by the time limit)");
    end.solutions.clear();
    EXPECT_EQ(AnswerText(end, kEnglish), "Analysis stopped: the time limit was reached");
    EXPECT_EQ(EndNoteText(end, kEnglish), "Analysis stopped: the time limit was reached");
}

TEST(EndTexts, NoSolution_IsToldWithItsNumber) {
    EXPECT_EQ(ResultBoxText(End({}), kEnglish), "Not found any solutions for #5");
    EXPECT_EQ(ResultBoxText(End({}), kPolish), "Nie znaleziono żadnych rozwiązań dla #5");
    EXPECT_EQ(ResultBoxText(End({}), kUkrainian), "Не знайдено жодного розв'язку для #5");
}

TEST(EndTexts, NoSolution_NotesWhatTheUserSwitchedOff) {
    TEndOfSolve end = End({});
    end.wasRelaxationOff = true;
    EXPECT_EQ(ResultBoxText(end, kEnglish),
              "Not found any solutions for #5\n\nNote:\n\t* there was only one pass with heuristcs "
              "(relaxation of heuristics was switched off by user's request)\n");
    end.wasFinalPassOff = true;
    end.isProved = false;
    EXPECT_EQ(ResultBoxText(end, kEnglish),
              "Not found any solutions for #5\n\nNote:\n\t* there was only one pass with heuristcs "
              "(relaxation of heuristics was switched off by user's request)\n\t* pass without "
              "heuristics has been skipped (on user's request)\n");
}

TEST(EndTexts, NoSolutionThatIsNotProved_IsNotToldAsSuch) {
    TEndOfSolve end = End({});
    end.isProved = false;
    EXPECT_EQ(ResultBoxText(end, kEnglish),
              "Not found any solutions for #5\n\nNote:\n\t* the search left lines out, so that a "
              "solution is not ruled out\n");
}

TEST(EndTexts, NoteOnAnotherProblem_TellsNumberAndCount) {
    EXPECT_EQ(EndNoteText(End({{"1.Qa1-a8", ""}, {"1.Ra2-a7", ""}}), kEnglish),
              "Thread solving problem 17 has completed successfully.\n2 solution(s) found of the "
              "problem 17");
    EXPECT_EQ(EndNoteText(End({}), kEnglish),
              "Thread solving problem 17 has completed successfully.\nNo solution found of the "
              "problem 17");
    EXPECT_EQ(EndNoteText(End({}), kPolish),
              "Wątek rozwiązujący problem 17 zakończył się pomyślnie.\nNie znaleziono rozwiązania "
              "problemu 17");
}

}  // namespace
}  // namespace quillmere
