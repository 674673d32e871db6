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
#include <malloc.h>
#include <optional>

#include <QCommandLineParser>
#include <QStringList>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include "core/json_writer.h"
#include "core/values.h"
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
    return parseOptions(args, std::vector<const char*>(valueOptions), std::vector<const char*>(flagOptions));
}

Options parseOptions(const Args& args, const std::vector<const char*>& valueOptions,
                     const std::vector<const char*>& flagOptions) {
    auto listed = [](const std::vector<const char*>& list, std::string_view name) {
        return std::any_of(list.begin(), list.end(), [&](const char* o) { return name == o; });
    };
    // The parser would take the next word for the value even when it is an
    // option, and its own messages are not ours: those two cases are told first.
    for (std::size_t i = 0; i < args.size() && args[i] != "--"; ++i) {
        const std::string& word = args[i];
        if (word.size() < 2 || word[0] != '-') continue;
        const std::size_t eq = word.find('=');
        const std::string name = word.substr(0, eq);
        if (listed(valueOptions, name) && eq == std::string::npos) {
            if (i + 1 == args.size() || args[i + 1].rfind("--", 0) == 0)
                throw UsageError("option " + name + " needs a value");
            ++i;
        } else if (listed(flagOptions, name) && eq != std::string::npos) {
            throw UsageError("option " + name + " takes no value");
        }
    }

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    auto bare = [](const char* option) { return QString::fromUtf8(option).mid(2); };  // "--today" -> "today"
    for (const char* o : valueOptions) parser.addOption(QCommandLineOption(bare(o), {}, QStringLiteral("value")));
    for (const char* o : flagOptions) parser.addOption(QCommandLineOption(bare(o)));
    QStringList words{QStringLiteral("zelmor-cli")};
    for (const std::string& a : args) words << QString::fromStdString(a);
    if (!parser.parse(words)) {
        const QStringList unknown = parser.unknownOptionNames();
        if (unknown.isEmpty()) throw UsageError(parser.errorText().toStdString());
        const std::string name = unknown.front().toStdString();
        // Named as it was written: "--tday", "-x".
        const auto written = std::find_if(args.begin(), args.end(), [&](const std::string& w) {
            const std::string n = w.substr(0, w.find('='));
            return n == "--" + name || n == "-" + name;
        });
        throw UsageError("unknown option " + (written != args.end() ? written->substr(0, written->find('=')) : name));
    }
    Options o;
    for (const QString& p : parser.positionalArguments()) o.positional.push_back(p.toStdString());
    for (const char* name : valueOptions) {
        const QStringList values = parser.values(bare(name));
        if (values.size() > 1) throw UsageError(std::string("option ") + name + " is given twice");
        if (!values.isEmpty()) o.values.emplace(name, values.front().toStdString());
    }
    for (const char* name : flagOptions)
        if (parser.isSet(bare(name))) o.flags.insert(name);
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

std::string errorDocument(std::string_view kind, std::string_view message, const std::optional<std::string>& id) {
    // A message may quote bytes of a broken document; the writer keeps this one valid.
    JsonWriter w(JsonWriter::Layout::OneLine, 128 + message.size());
    w.beginObject();
    w.key("format").string("zelmor-results");
    w.key("version").integer(1);
    if (id) w.key("id").string(*id);
    w.key("error").beginObject();
    w.key("kind").string(kind);
    w.key("message").string(message);
    w.endObject();
    w.endObject();
    return w.take();
}

const char* errorKind(int exitStatus) {
    switch (exitStatus) {
        case 2: return "input";
        case 3: return "overflow";
        default: return "environment";
    }
}

std::string reportId(const NishumInput& report) { return trimmed(report.NishumID()); }

namespace {

bool isBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

struct Document {
    std::string where;      // the file, or "standard input"
    std::size_t firstLine;  // the line of standard input where the document begins, or 0
    std::string text;
    std::string readError;  // the input could not be read
    bool inStream = false;  // one of several documents written over lines: a syntax error ends the reading
    bool alone = false;     // the only document of the input
};

// Tells why a document is refused, with the place where it was met: the file,
// or the line of standard input (firstLine > 0) where the document begins.
std::string refusalMessage(const Document& doc, const InputError& e) {
    if (e.line > 0 && doc.firstLine > 0)  // the place within the document is a place of the input
        return doc.where + ", line " + std::to_string(doc.firstLine + e.line - 1) + ", column " +
               std::to_string(e.column) + ": " + e.problem;
    if (e.line > 0) return doc.where + ", " + e.what();
    if (doc.firstLine > 0) return doc.where + ", line " + std::to_string(doc.firstLine) + ": " + e.what();
    return doc.where + ": " + e.what();
}

std::string placeOf(const Document& doc) {
    return doc.firstLine > 0 ? doc.where + ", line " + std::to_string(doc.firstLine) : doc.where;
}

// Splits a stream of JSON documents written over several lines (indented, or
// one after another) by their brackets, line by line. A document begins at
// the first character that is not white space; it ends where its brackets
// close, or, for a text that does not begin with a bracket, at the end of its
// line (the reader then says what is wrong with it).
class DocumentSplitter {
public:
    // Takes one line (without its end); calls onDocument for each document that ends on it.
    template <class F>
    void line(std::string_view text, std::size_t lineNo, F&& onDocument) {
        std::size_t from = 0;
        while (from <= text.size()) {
            if (!open()) {
                while (from < text.size() && (text[from] == ' ' || text[from] == '\t' || text[from] == '\r')) ++from;
                if (from == text.size()) return;
                firstLine_ = lineNo;
                // Blanks in place of what came before on the line keep the columns of the input.
                doc_.assign(utf8Length(text.substr(0, from)), ' ');
                bracketed_ = text[from] == '{' || text[from] == '[';
                started_ = true;
            }
            std::size_t i = from;
            if (bracketed_) {
                for (; i < text.size(); ++i) {
                    const char c = text[i];
                    if (inString_) {
                        if (escaped_) escaped_ = false;
                        else if (c == '\\') escaped_ = true;
                        else if (c == '"') inString_ = false;
                    } else if (c == '"') {
                        inString_ = true;
                    } else if (c == '{' || c == '[') {
                        ++depth_;
                    } else if ((c == '}' || c == ']') && --depth_ == 0) {
                        ++i;
                        break;
                    }
                }
            } else {
                i = text.size();
            }
            doc_.append(text.substr(from, i - from));
            if (bracketed_ && depth_ > 0) {  // goes on on the next line
                doc_ += '\n';
                return;
            }
            onDocument(std::move(doc_), firstLine_);
            doc_.clear();
            started_ = false;
            from = i;
            if (from == text.size()) return;
        }
    }
    // The input ended: a document left open is handed on as it is (the reader names what is missing).
    template <class F>
    void end(F&& onDocument) {
        if (open()) onDocument(std::move(doc_), firstLine_);
        started_ = false;
    }

private:
    bool open() const { return started_; }
    std::string doc_;
    std::size_t firstLine_ = 0;
    bool started_ = false, bracketed_ = false, inString_ = false, escaped_ = false;
    int depth_ = 0;
};

// The documents of standard input. The first document tells the form: one that
// ends on the line where it began makes the input JSON Lines (each line a
// document, as far as it goes); otherwise documents are split by their brackets.
// onDocument returns false to stop the reading.
void forEachStdinDocument(const std::function<bool(Document&&)>& onDocument) {
    enum class Form { Unknown, Lines, Stream } form = Form::Unknown;
    DocumentSplitter splitter;
    std::optional<Document> held;  // the first stream document, until it is known whether it is alone
    bool stopped = false;
    auto give = [&](Document&& d) {
        if (!stopped && !onDocument(std::move(d))) stopped = true;
    };
    std::size_t streamed = 0;
    auto streamDocument = [&](std::string&& text, std::size_t firstLine) {
        Document d{"standard input", firstLine, std::move(text), {}, true, false};
        if (streamed++ == 0) {
            held = std::move(d);
            return;
        }
        if (held) {
            give(std::move(*held));
            held.reset();
        }
        give(std::move(d));
    };
    std::string line;
    std::size_t lineNo = 0;
    while (!stopped && std::getline(std::cin, line)) {
        ++lineNo;
        if (form == Form::Lines) {
            if (isBlank(line)) continue;
            if (line.back() == '\r') line.pop_back();
            give(Document{"standard input", lineNo, std::move(line), {}, false, false});
            line.clear();
            continue;
        }
        if (form == Form::Unknown && !isBlank(line)) {
            // Does the first document end on this line?
            DocumentSplitter probe;
            bool ended = false;
            probe.line(line, lineNo, [&](std::string&&, std::size_t) { ended = true; });
            form = ended ? Form::Lines : Form::Stream;
            if (ended) {
                if (line.back() == '\r') line.pop_back();
                give(Document{"standard input", lineNo, std::move(line), {}, false, false});
                line.clear();
                continue;
            }
        }
        splitter.line(line, lineNo, streamDocument);
    }
    if (!stopped) splitter.end(streamDocument);
    if (held) {
        held->alone = true;
        give(std::move(*held));
    }
    if (!stopped && std::cin.bad())
        give(Document{"standard input", 0, {}, "standard input: cannot read: " + std::string(std::strerror(errno))});
}

// The documents of the inputs in input order, as texts; an input that cannot
// be read comes as a document with its error. onDocument returns false to stop.
void forEachDocument(const std::vector<std::string>& inputs, const std::function<bool(Document&&)>& onDocument) {
    bool stopped = false;
    auto give = [&](Document&& d) {
        if (!stopped && !onDocument(std::move(d))) stopped = true;
    };
    for (const std::string& input : inputs) {
        if (stopped) return;
        if (input == "-") {
            forEachStdinDocument([&](Document&& d) {
                if (inputs.size() > 1) d.alone = false;
                give(std::move(d));
                return !stopped;
            });
            continue;
        }
        std::error_code ec;
        if (fs::is_directory(input, ec)) {
            give(Document{input, 0, {}, input + ": cannot read: it is a folder, not a file"});
            continue;
        }
        errno = 0;
        std::ifstream in(input, std::ios::binary);
        if (!in) {
            give(Document{input, 0, {}, input + ": cannot read: " + std::string(errno ? std::strerror(errno) : "cannot open")});
            continue;
        }
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (in.bad()) {
            give(Document{input, 0, {}, input + ": cannot read: " + std::string(errno ? std::strerror(errno) : "read error")});
            continue;
        }
        give(Document{input, 0, std::move(text), {}, false, inputs.size() == 1});
    }
}

// One document to its outcome: the report handed on, or the refusal. *ends
// is set when the document ends the reading (a syntax error within a stream).
template <class R>
R outcomeOf(const Document& doc, const std::function<R(NishumInput&, const DocumentPlace&)>& onReport,
            const std::function<R(const Refusal&)>& onRefused, bool* ends) {
    if (!doc.readError.empty()) return onRefused(Refusal{doc.readError, 1, std::nullopt});
    std::optional<NishumInput> report;
    try {
        report.emplace(parseReportDocument(doc.text));
    } catch (const InputError& e) {
        if (e.line > 0 && doc.inStream) *ends = true;
        return onRefused(Refusal{refusalMessage(doc, e), 2, e.reportId});
    }
    return onReport(*report, DocumentPlace{placeOf(doc), doc.alone});
}

}  // namespace

std::size_t forEachReport(const std::vector<std::string>& inputs,
                          const std::function<void(NishumInput&, const DocumentPlace&)>& onReport,
                          const std::function<void(const Refusal&)>& onRefused) {
    std::size_t count = 0;
    const std::function<int(NishumInput&, const DocumentPlace&)> report = [&](NishumInput& r, const DocumentPlace& p) {
        onReport(r, p);
        return 0;
    };
    const std::function<int(const Refusal&)> refused = [&](const Refusal& r) {
        onRefused(r);
        return 0;
    };
    forEachDocument(inputs, [&](Document&& doc) {
        ++count;
        bool ends = false;
        outcomeOf(doc, report, refused, &ends);
        return !ends;
    });
    return count;
}

int processReportsInOrder(const std::vector<std::string>& inputs,
                          const std::function<Outcome(NishumInput&, const DocumentPlace&)>& onReport,
                          const std::function<Outcome(const Refusal&)>& onRefused) {
    constexpr std::size_t kChunk = 2048;
    // The workers' heaps would give back each chunk's result texts and fault
    // them in again for the next: keep what a batch has once taken.
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    struct Slot {
        Document doc;
        Outcome outcome;
        bool ends = false;
    };
    std::vector<Slot> chunk;
    int status = 0;
    bool ended = false;
    auto flush = [&] {
        // Each worker takes a contiguous share of the slots, this thread the
        // first; the outcomes are written in input order.
        const std::size_t shares = std::max(1, QThreadPool::globalInstance()->maxThreadCount());
        const std::size_t share = (chunk.size() + shares - 1) / shares;
        auto work = [&](std::size_t from) {
            for (std::size_t i = from; i < std::min(chunk.size(), from + share); ++i)
                chunk[i].outcome = outcomeOf(chunk[i].doc, onReport, onRefused, &chunk[i].ends);
        };
        std::vector<QFuture<void>> others;
        for (std::size_t from = share; from < chunk.size(); from += share) others.push_back(QtConcurrent::run(work, from));
        work(0);
        for (QFuture<void>& f : others) f.waitForFinished();
        for (const Slot& s : chunk) {
            if (!s.outcome.message.empty()) std::cerr << s.outcome.message << '\n';
            std::cout << s.outcome.line << '\n';
            status = std::max(status, s.outcome.status);
            if (s.ends) {
                ended = true;
                break;
            }
        }
        chunk.clear();
    };
    forEachDocument(inputs, [&](Document&& doc) {
        chunk.push_back(Slot{std::move(doc), {}, false});
        if (chunk.size() == kChunk) flush();
        return !ended;
    });
    flush();
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

bool closeStandardOutput() {
    std::cout.flush();
    bool ok = !std::cout.fail();
    if (std::fflush(stdout) != 0) ok = false;
    if (std::fclose(stdout) != 0) ok = false;
    return ok;
}

}  // namespace zelmor::cli
