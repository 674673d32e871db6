#include "storage/install_files.h"

#include <QByteArrayView>
#include <QStringDecoder>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>
#include <system_error>

#include "core/values.h"

namespace zelmor::storage {
namespace {

std::string inDataDir(const std::string& dataDir, const char* name) {
    return (std::filesystem::path(dataDir) / name).string();
}

// Windows-1255, the code page of Hebrew Windows systems: the characters of
// the bytes 0x80 to 0xFF (U+FFFD where the code page has none).
constexpr std::array<char16_t, 128> kCp1255 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0xFFFD, 0x2039, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD,
    0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0xFFFD, 0x203A, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD,
    0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x20AA, 0x00A5, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x00D7, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF,
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x00B4, 0x00B5, 0x00B6, 0x00B7,
    0x00B8, 0x00B9, 0x00F7, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF,
    0x05B0, 0x05B1, 0x05B2, 0x05B3, 0x05B4, 0x05B5, 0x05B6, 0x05B7,
    0x05B8, 0x05B9, 0xFFFD, 0x05BB, 0x05BC, 0x05BD, 0x05BE, 0x05BF,
    0x05C0, 0x05C1, 0x05C2, 0x05C3, 0x05F0, 0x05F1, 0x05F2, 0x05F3,
    0x05F4, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD,
    0x05D0, 0x05D1, 0x05D2, 0x05D3, 0x05D4, 0x05D5, 0x05D6, 0x05D7,
    0x05D8, 0x05D9, 0x05DA, 0x05DB, 0x05DC, 0x05DD, 0x05DE, 0x05DF,
    0x05E0, 0x05E1, 0x05E2, 0x05E3, 0x05E4, 0x05E5, 0x05E6, 0x05E7,
    0x05E8, 0x05E9, 0x05EA, 0xFFFD, 0xFFFD, 0x200E, 0x200F, 0xFFFD,
};

void appendUtf8(std::string& out, char16_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

bool isUtf8(const std::string& bytes) {
    // Stateless: a sequence cut short at the end is an error too, not left pending.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    [[maybe_unused]] const QString decoded = utf8(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return !utf8.hasError();
}

}  // namespace

std::string textFileToUtf8(std::string bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);  // a byte order mark is no text
    if (isUtf8(bytes)) return bytes;
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        appendUtf8(out, b < 0x80 ? static_cast<char16_t>(b) : kCp1255[b - 0x80]);
    }
    return out;
}

namespace {

// The lines of a text file without their line ends (LF or CR LF), as UTF-8;
// false when the file cannot be read.
bool readLines(const std::string& path, std::vector<std::string>& lines) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    const std::string text = textFileToUtf8(std::string(std::istreambuf_iterator<char>(in), {}));
    if (in.bad()) return false;
    std::size_t from = 0;
    while (from < text.size()) {
        std::size_t end = text.find('\n', from);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(from, end - from);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        from = end + 1;
    }
    return true;
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
