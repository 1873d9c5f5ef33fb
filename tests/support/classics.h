// Reads the compositions of tests/data/classics.csv.
#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillmere::reference {

struct TClassic {
    std::string fen;
    int fullMoves = 0;
    std::string author;
    std::string year;
    std::string key;  // short algebraic
};

inline std::vector<TClassic> ReadClassics(const std::string& path) {
    std::ifstream file(path);
    std::vector<TClassic> classics;
    std::string line;
    bool isHeadingRead = false;
    while (std::getline(file, line)) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (!isHeadingRead) {
            isHeadingRead = true;
            continue;
        }
        std::istringstream fields(line);
        TClassic classic;
        std::string moves;
        if (!std::getline(fields, classic.fen, ';') || !std::getline(fields, moves, ';') ||
            !std::getline(fields, classic.author, ';') ||
            !std::getline(fields, classic.year, ';') || !std::getline(fields, classic.key, ';')) {
            throw std::runtime_error("a row of the classics is too short: " + line);
        }
        classic.fullMoves = std::stoi(moves);
        classics.push_back(classic);
    }
    return classics;
}

}  // namespace quillmere::reference
