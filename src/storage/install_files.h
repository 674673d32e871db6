#pragma once
// The two small text files of the installation, beside the index table in the
// data folder and shared by the builds of every tax year: the user's name
// (USERZELW.NAM) and the covering letter that opens every printout (PNIA.TXT).
// These routines swallow every failure: a failed read gives the empty text, a
// failed write leaves the old file as it was. Files are read as UTF-8, or as
// Windows-1255 (the code page such files have on Hebrew Windows systems) when
// they are not UTF-8; they are written as UTF-8.

#include <string>

namespace zelmor::storage {

std::string userNamePath(const std::string& dataDir);
std::string pniaPath(const std::string& dataDir);

// The first line of the user-name file, trimmed; "" if missing or unreadable.
std::string UserName(const std::string& dataDir);
// Replaces the file with the trimmed name and a line end.
void SaveUserName(const std::string& dataDir, const std::string& name);

// The whole covering letter: its lines joined by CR LF, with no line end behind
// the last; "" if missing or unreadable.
std::string Pnia(const std::string& dataDir);
// Replaces the file with the text and a line end.
void SavePnia(const std::string& dataDir, const std::string& text);

// The bytes of a text file as UTF-8: kept when they are UTF-8 (without a byte
// order mark), else read as Windows-1255.
std::string textFileToUtf8(std::string bytes);

}  // namespace zelmor::storage
