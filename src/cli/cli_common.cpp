#include "cli/cli_common.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <thread>

#include <nlohmann/json.hpp>

#include "report/report_json.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

namespace fs = std::filesystem;

bool Options::has(std::string_view name) const { return values.count(name) > 0 || flags.count(name) > 0; }

std::string Options::value(std::string_view name, std::string fallback) const {
    const auto it = values.find(name);
    return it == values.end() ? std::move(fallback) : it->second;
}

Options parseOptions(const Args& args, std::initializer_list<const char*> valueOptions,
                     std::initializer_list<const char*> flagOptions) {
    auto listed = [](std::initializer_list<const char*> list, std::string_view name) {
        return std::any_of(list.begin(), list.end(), [&](const char* o) { return name == o; });
    };
    Options o;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (optionsEnded || word == "-" || word.empty() || word[0] != '-') {
            o.positional.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t eq = word.find('=');
        const std::string name = word.substr(0, eq);
        if (listed(valueOptions, name)) {
            std::string value;
            if (eq != std::string::npos) {
                value = word.substr(eq + 1);
            } else if (i + 1 < args.size() && args[i + 1].rfind("--", 0) != 0) {
                value = args[++i];
            } else {
                throw UsageError("option " + name + " needs a value");
            }
            if (o.values.count(name)) throw UsageError("option " + name + " is given twice");
            o.values.emplace(name, std::move(value));
        } else if (listed(flagOptions, name)) {
            if (eq != std::string::npos) throw UsageError("option " + name + " takes no value");
            o.flags.insert(name);
        } else {
            throw UsageError("unknown option " + name);
        }
    }
    return o;
}

Date resolveToday(const Options& o) {
    if (o.has("--today")) {
        const std::string text = o.value("--today");
        if (const auto d = parseIsoDate(text); d && !d->isNull()) return *d;
        throw UsageError("--today: \"" + text + "\" is not a date of the form YYYY-MM-DD");
    }
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return *Date::fromYmd(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

std::string resolveDataDir(const Options& o) {
    fs::path dir;
    if (o.has("--data-dir")) {
        dir = o.value("--data-dir");
        if (dir.empty()) throw UsageError("--data-dir: the folder name is empty");
    } else if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && xdg[0] == '/') {
        dir = fs::path(xdg) / "Zelmor";  // a relative XDG_DATA_HOME is to be ignored
    } else if (const char* home = std::getenv("HOME"); home && home[0]) {
        dir = fs::path(home) / ".local" / "share" / "Zelmor";
    } else {
        throw std::runtime_error("cannot tell the data folder: neither XDG_DATA_HOME nor HOME is set; give --data-dir");
    }
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (ec) throw std::runtime_error("cannot create the data folder " + dir.string() + ": " + ec.message());
    if (!fs::is_directory(dir, ec)) throw std::runtime_error("the data folder " + dir.string() + " is not a folder");
    return dir.string();
}

std::string errorDocument(std::string_view kind, std::string_view message) {
    // A message may quote bytes of a broken document; they must not break this one.
    auto str = [](std::string_view s) {
        return nlohmann::json(std::string(s)).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    };
    return "{\"format\": \"zelmor-results\", \"version\": 1, \"error\": {\"kind\": " + str(kind) +
           ", \"message\": " + str(message) + "}}";
}

const char* errorKind(int exitStatus) {
    switch (exitStatus) {
        case 2: return "input";
        case 3: return "overflow";
        default: return "environment";
    }
}

namespace {

bool isBlankLine(std::string_view line) {
    return std::all_of(line.begin(), line.end(), [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
}

struct Document {
    std::string where;      // the file, or "standard input"
    std::size_t firstLine;  // the line of standard input, or 0
    std::string text;
    std::string readError;  // the input could not be read
};

// Tells why a document is refused, with the place where it was met: the file,
// or the line of standard input (firstLine > 0) that holds the document.
std::string refusalMessage(const Document& doc, const InputError& e) {
    if (e.line > 0 && doc.firstLine > 0)  // a document of one line: the place is the input's line
        return doc.where + ", line " + std::to_string(doc.firstLine + e.line - 1) + ", column " +
               std::to_string(e.column) + ": " + e.problem;
    if (e.line > 0) return doc.where + ", " + e.what();
    if (doc.firstLine > 0) return doc.where + ", line " + std::to_string(doc.firstLine) + ": " + e.what();
    return doc.where + ": " + e.what();
}

// The documents of the inputs in input order, as texts; an input that cannot
// be read comes as a document with its error.
void forEachDocument(const std::vector<std::string>& inputs, const std::function<void(Document&&)>& onDocument) {
    for (const std::string& input : inputs) {
        if (input == "-") {
            std::string line;
            std::size_t lineNo = 0;
            while (std::getline(std::cin, line)) {
                ++lineNo;
                if (isBlankLine(line)) continue;
                if (!line.empty() && line.back() == '\r') line.pop_back();
                onDocument(Document{"standard input", lineNo, std::move(line), {}});
                line.clear();
            }
            if (std::cin.bad())
                onDocument(Document{"standard input", 0, {}, "standard input: cannot read: " + std::string(std::strerror(errno))});
            continue;
        }
        std::error_code ec;
        if (fs::is_directory(input, ec)) {
            onDocument(Document{input, 0, {}, input + ": cannot read: it is a folder, not a file"});
            continue;
        }
        errno = 0;
        std::ifstream in(input, std::ios::binary);
        if (!in) {
            onDocument(Document{input, 0, {}, input + ": cannot read: " + std::string(errno ? std::strerror(errno) : "cannot open")});
            continue;
        }
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (in.bad()) {
            onDocument(Document{input, 0, {}, input + ": cannot read: " + std::string(errno ? std::strerror(errno) : "read error")});
            continue;
        }
        onDocument(Document{input, 0, std::move(text), {}});
    }
}

// One document to its outcome: the report handed on, or the refusal.
Outcome outcomeOf(const Document& doc, const std::function<Outcome(NishumInput&)>& onReport,
                  const std::function<Outcome(const std::string&, int)>& onRefused) {
    if (!doc.readError.empty()) return onRefused(doc.readError, 1);
    std::optional<NishumInput> report;
    try {
        report.emplace(parseReportDocument(doc.text));
    } catch (const InputError& e) {
        return onRefused(refusalMessage(doc, e), 2);
    }
    return onReport(*report);
}

}  // namespace

std::size_t forEachReport(const std::vector<std::string>& inputs, const std::function<void(NishumInput&)>& onReport,
                          const std::function<void(const std::string& message, int exitStatus)>& onRefused) {
    std::size_t count = 0;
    forEachDocument(inputs, [&](Document&& doc) {
        ++count;
        outcomeOf(
            doc, [&](NishumInput& r) { onReport(r); return Outcome{}; },
            [&](const std::string& m, int status) { onRefused(m, status); return Outcome{}; });
    });
    return count;
}

int processReportsInOrder(const std::vector<std::string>& inputs, const std::function<Outcome(NishumInput&)>& onReport,
                          const std::function<Outcome(const std::string& message, int exitStatus)>& onRefused) {
    const unsigned threads = std::max(1u, std::min(8u, std::thread::hardware_concurrency()));
    constexpr std::size_t kChunk = 2048;
    std::vector<Document> chunk;
    std::vector<Outcome> outcomes;
    int status = 0;
    auto flush = [&] {
        outcomes.assign(chunk.size(), Outcome{});
        auto work = [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) outcomes[i] = outcomeOf(chunk[i], onReport, onRefused);
        };
        if (threads == 1 || chunk.size() < 64) {
            work(0, chunk.size());
        } else {
            // Each thread takes a contiguous share; the results are written in input order.
            std::vector<std::thread> pool;
            const std::size_t share = (chunk.size() + threads - 1) / threads;
            for (unsigned t = 1; t < threads; ++t)
                pool.emplace_back(work, std::min(chunk.size(), t * share), std::min(chunk.size(), (t + 1) * share));
            work(0, std::min(chunk.size(), share));
            for (auto& th : pool) th.join();
        }
        for (const Outcome& o : outcomes) {
            if (!o.message.empty()) std::cerr << o.message << '\n';
            std::cout << o.line << '\n';
            status = std::max(status, o.status);
        }
        chunk.clear();
    };
    forEachDocument(inputs, [&](Document&& doc) {
        chunk.push_back(std::move(doc));
        if (chunk.size() == kChunk) flush();
    });
    flush();
    std::cout.flush();
    return status;
}

std::unique_ptr<MadadTable> openMadadTable(const std::string& dataDir, const char* command, bool errorDocumentOut) {
    auto table = std::make_unique<MadadTable>(QString::fromStdString(dataDir));
    if (table->ok()) return table;
    const std::string why = table->errorString().toStdString();
    std::cerr << "zelmor-cli " << command << ": the price index table cannot be read: " << why << '\n';
    if (errorDocumentOut) std::cout << errorDocument("environment", why) << '\n';
    return nullptr;
}

bool manyOutputs(const std::vector<std::string>& inputs) {
    return inputs.size() > 1 || std::find(inputs.begin(), inputs.end(), "-") != inputs.end();
}

}  // namespace zelmor::cli
