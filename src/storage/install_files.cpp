#include "storage/install_files.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>
#include <system_error>

#include "core/values.h"

namespace zelmor::storage {
namespace {

std::string inDataDir(const std::string& dataDir, const char* name) {
    return (std::filesystem::path(dataDir) / name).string();
}

// The lines of a text file without their line ends (LF or CR LF); false when
// the file cannot be read.
bool readLines(const std::string& path, std::vector<std::string>& lines) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return !in.bad();
}

// Writes the whole file beside the old one and renames it over, so that a
// failure half way leaves the old file as it was.
void writeWhole(const std::string& path, const std::string& content) {
    try {
        const std::string tmp = path + ".tmp";
        {
            std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
            if (!out) return;
            out << content;
            out.flush();
            if (!out) {
                out.close();
                std::error_code ec;
                std::filesystem::remove(tmp, ec);
                return;
            }
        }
        std::error_code ec;
        std::filesystem::rename(tmp, path, ec);
        if (ec) std::filesystem::remove(tmp, ec);
    } catch (...) {
        // Side files never stop the program.
    }
}

}  // namespace

std::string userNamePath(const std::string& dataDir) { return inDataDir(dataDir, "USERZELW.NAM"); }
std::string pniaPath(const std::string& dataDir) { return inDataDir(dataDir, "PNIA.TXT"); }

std::string UserName(const std::string& dataDir) {
    try {
        std::vector<std::string> lines;
        if (!readLines(userNamePath(dataDir), lines) || lines.empty()) return {};
        return trimmed(lines.front());
    } catch (...) {
        return {};
    }
}

void SaveUserName(const std::string& dataDir, const std::string& name) {
    writeWhole(userNamePath(dataDir), trimmed(name) + "\n");
}

std::string Pnia(const std::string& dataDir) {
    try {
        std::vector<std::string> lines;
        if (!readLines(pniaPath(dataDir), lines)) return {};
        std::string text;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (i) text += "\r\n";
            text += lines[i];
        }
        return text;
    } catch (...) {
        return {};
    }
}

void SavePnia(const std::string& dataDir, const std::string& text) { writeWhole(pniaPath(dataDir), text + "\n"); }

}  // namespace zelmor::storage
