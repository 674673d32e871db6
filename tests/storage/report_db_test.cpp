#include <filesystem>

#include "core/values.h"
#include "storage/storage_suite.h"

namespace zelmor::storage::testing {
namespace {

std::string rowsOf(const std::string& table, const std::string& id) {
    return "SELECT COUNT(*) FROM \"" + table + "\" WHERE \"IDM\" = '" + id + "'";
}

TEST_P(StorageTest, SaveReplacesBothRowsAndAChangedIdLeavesTheOldOnes) {
    ASSERT_TRUE(db_->saveNishum(patternReport("111", 1)).ok);
    NishumInput saved = patternReport("111", 2);
    saved.Pratim.FirstNameM = "  משה ";
    saved.Pratim.BirthDateM = Date();  // no date
    const StoreOutcome out = db_->saveNishum(saved);
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.id, "111");
    saved.Pratim.FirstNameM = "משה";
    EXPECT_EQ(firstDifference(load("111"), saved), "");  // every field, texts trimmed
    EXPECT_EQ(db_->queryScalar("SELECT \"BirthDateM\" FROM \"tblDetails\" WHERE \"IDM\" = '111'"), "0");

    saved.Pratim.IDM = "222";
    ASSERT_TRUE(db_->saveNishum(saved).ok);
    for (const char* table : {"tblDetails", "tblDetails1"}) {
        EXPECT_EQ(count(rowsOf(table, "111")), 1) << table;
        EXPECT_EQ(count(rowsOf(table, "222")), 1) << table;
    }
}

TEST_P(StorageTest, NullReadsAsZeroOnlyWhereAllowed) {
    ASSERT_TRUE(db_->saveNishum(patternReport("333", 4)).ok);
    db_->execRaw("UPDATE \"tblDetails\" SET \"N256\" = NULL WHERE \"IDM\" = '333'");
    db_->execRaw("UPDATE \"tblDetails1\" SET \"N067\" = NULL, \"N260_1\" = NULL WHERE \"IDM\" = '333'");
    const NishumInput loaded = load("333");
    EXPECT_EQ(loaded.Pturot.N256, Amount(0));
    EXPECT_EQ(loaded.Rechush.N067, Amount(0));
    EXPECT_EQ(loaded.Nekudot.N260_1, 0);
    EXPECT_EQ(loaded.Nekudot.N260, SumN260(loaded.Nekudot));
    // The other columns refuse Null: such a row cannot come to be.
    for (const char* set : {"\"tblDetails\" SET \"N150\"", "\"tblDetails\" SET \"LastNameM\"",
                            "\"tblDetails1\" SET \"isHechzerMas\""})
        EXPECT_THROW(db_->execRaw(std::string("UPDATE ") + set + " = NULL WHERE \"IDM\" = '333'"), StorageError) << set;
}

TEST_P(StorageTest, N260IsNeverStoredAndEmptyTextsAreStoredEmpty) {
    NishumInput r = patternReport("444", 5);
    r.Nekudot.N260 = 999;  // whatever the open report held
    ASSERT_TRUE(db_->saveNishum(r).ok);
    for (const std::string table : {"tblDetails", "tblDetails1"})
        EXPECT_THROW(db_->execRaw("SELECT t.\"N260\" FROM \"" + table + "\" t"), StorageError) << table;
    EXPECT_NO_THROW(db_->execRaw("SELECT t.\"N260_1\" FROM \"tblDetails1\" t"));
    EXPECT_EQ(load("444").Nekudot.N260, SumN260(r.Nekudot));

    NishumInput empty;
    empty.Pratim.IDM = "666";
    ASSERT_TRUE(db_->saveNishum(empty).ok);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"LastNameM\" IS NULL OR \"Address\" IS NULL"), 0);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" = '666' AND \"LastNameM\" = '' "
                    "AND \"Address\" = '' AND \"BirthDateM\" = 0"),
              1);
}

TEST_P(StorageTest, MissingDetails1RowFollowsTheRulesOfEachSection) {
    const NishumInput stored = patternReport("555", 6);
    ASSERT_TRUE(db_->saveNishum(stored).ok);
    db_->execRaw("DELETE FROM \"tblDetails1\" WHERE \"IDM\" = '555'");
    const NishumInput before = patternReport("999", 8);  // the report open before
    NishumInput loaded = before;
    ASSERT_TRUE(db_->openNishum("555", loaded).ok);

    // Fields of tblDetails come from the row; those of tblDetails1 keep their
    // value, except Pturot's, Nikuim's N206 and N207 and the six counts of Nekudot.
    NishumInput want = stored;
    for (const FieldDef& f : allFields()) {
        if (f.table != StoredTable::Details1) continue;
        const std::string name = f.name;
        const bool zero = f.section == SectionId::Pturot ||
                          (f.section == SectionId::Nikuim && (name == "N206" || name == "N207")) ||
                          (f.section == SectionId::Nekudot && name.starts_with("N260_"));
        copyField(f, zero ? NishumInput() : before, want);
    }
    want.Nekudot.N260 = SumN260(want.Nekudot);
    EXPECT_EQ(firstDifference(loaded, want), "");
}

TEST_P(StorageTest, IdsAreTrimmedCheckedAndNeverPartOfTheStatement) {
    // No id, or blanks only: nothing stored.
    NishumInput r = patternReport("   ", 1);
    EXPECT_EQ(db_->saveNishum(r).error, StoreError::NoId);
    // A character that no id may hold is refused before the database, on
    // every operation: among them those that make an id look like another.
    const struct {
        std::string id;
        IdFault fault;
        char32_t ch;
    } bad[] = {
        {"12\"3", IdFault::Quote, U'"'},
        {"12\n3", IdFault::Control, U'\n'},
        {std::string("12\0" "3", 4), IdFault::Control, 0},
        {"12\u00853", IdFault::Control, 0x85},             // next line, a C1 control
        {"123\u200F", IdFault::Invisible, 0x200F},          // right-to-left mark
        {"\u200E123", IdFault::Invisible, 0x200E},          // left-to-right mark
        {"1\u202B23\u202C", IdFault::Invisible, 0x202B},   // embedding
        {"12\u20663", IdFault::Invisible, 0x2066},          // isolate
        {"\uFEFF123", IdFault::Invisible, 0xFEFF},          // byte order mark
        {"12\u200D3", IdFault::Invisible, 0x200D},          // zero width joiner
        {"123\u00A0", IdFault::Invisible, 0xA0},            // no-break space
        {"12\u20283", IdFault::Control, 0x2028},            // line separator
    };
    for (const auto& b : bad) {
        r.Pratim.IDM = b.id;
        for (const StoreOutcome& o : {db_->saveNishum(r), db_->saveMany({r}), db_->openNishum(b.id, r),
                                      db_->deleteNishum(b.id)}) {
            EXPECT_EQ(o.error, StoreError::BadId) << b.id;
            EXPECT_EQ(o.idCheck.fault, b.fault) << b.id;
            EXPECT_EQ(o.idCheck.ch, b.ch) << b.id;
        }
    }
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\""), 1);  // the template alone
    // Hebrew letters, digits and inner blanks are plain characters of an id.
    EXPECT_TRUE(checkId("אבג 12-3").ok());

    // The template's id is no report's: a save or an import under it would
    // change every new report.
    db_->execRaw("UPDATE \"tblDetails\" SET \"N150\" = 7 WHERE \"IDM\" = 'NewInit'");
    r = patternReport(" NewInit ", 1);
    EXPECT_EQ(db_->saveNishum(r).error, StoreError::TemplateId);
    EXPECT_EQ(db_->saveMany({patternReport("1", 1), r}).error, StoreError::TemplateId);
    EXPECT_EQ(db_->deleteNishum("NewInit").error, StoreError::TemplateId);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"N150\" = 7"), 1);
    EXPECT_EQ(count(rowsOf("tblDetails", "1")), 0);  // the batch stored nothing

    // Outer blanks go; the id is stored trimmed in both tables and opens either way.
    ASSERT_TRUE(db_->saveNishum(patternReport(" 777 ", 2)).ok);
    EXPECT_EQ(count(rowsOf("tblDetails", "777")) + count(rowsOf("tblDetails1", "777")), 2);
    EXPECT_EQ(load("\t777  ").Pratim.IDM, "777");

    // Quotes of SQL are plain characters of an id.
    const std::string evil = "x'; DROP TABLE tblDetails1; --";
    ASSERT_TRUE(db_->saveNishum(patternReport(evil, 3)).ok);
    EXPECT_EQ(patternProblem(load(evil), evil), "");
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\""), 3);
    ASSERT_TRUE(db_->deleteNishum(evil).ok);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\""), 2);
}

TEST_P(StorageTest, AFailedSaveLeavesTheStoredReportsAsTheyWere) {
    ASSERT_TRUE(db_->saveNishum(patternReport("888", 1)).ok);
    for (const char* step : {"deleted", "inserted"}) {
        db_->setSaveStepHook([step](const char* at) {
            if (std::string(at) == step) throw std::runtime_error("disk full");
        });
        const StoreOutcome out = db_->saveNishum(patternReport("888", 2));
        EXPECT_EQ(out.error, StoreError::DatabaseFailure);
        EXPECT_EQ(out.detail, "disk full");
        const NishumInput loaded = load("888");
        EXPECT_EQ(patternVersion(loaded), 1) << step;
        EXPECT_EQ(patternProblem(loaded, "888"), "") << step;
    }
    // A batch is all or nothing: the second report fails, the first is undone.
    db_->setSaveStepHook([n = 0](const char* at) mutable {
        if (std::string(at) == "inserted" && ++n == 2) throw std::runtime_error("boom");
    });
    EXPECT_FALSE(db_->saveMany({patternReport("888", 3), patternReport("3", 3)}).ok);
    db_->setSaveStepHook({});
    EXPECT_EQ(patternVersion(load("888")), 1);
    NishumInput r;
    EXPECT_FALSE(db_->openNishum("3", r).ok);
}

TEST_P(StorageTest, FailedOpenLeavesTheOpenReportAsItWasAndReadersWriteNothing) {
    const NishumInput open = patternReport("123", 9);
    auto refused = [&](ReportDb& db, const std::string& id, StoreError error, const std::string& says) {
        NishumInput r = open;
        const StoreOutcome out = db.openNishum(id, r);
        EXPECT_EQ(out.error, error) << id;
        EXPECT_EQ(out.id, zelmor::trimmed(id));
        EXPECT_NE(out.detail.find(says), std::string::npos) << out.detail;
        EXPECT_EQ(firstDifference(r, open), "") << id;
    };
    // A reader neither makes a missing file nor sets up an empty database.
    ReportDb early(location_, ReportDb::Mode::ReadOnly);
    refused(early, "1", StoreError::DatabaseFailure, "");
    EXPECT_FALSE(sqlite() && std::filesystem::exists(location_)) << "a reader made the file";

    ASSERT_TRUE(db_->saveNishum(open).ok);
    refused(*db_, "404", StoreError::NotFound, "");
    refused(*db_, "  ", StoreError::NoId, "");
    // A stored value this program never writes: refused whole, naming the column.
    ASSERT_TRUE(db_->saveNishum(patternReport("505", 1)).ok);
    db_->execRaw("UPDATE \"tblDetails1\" SET \"isHechzerMas\" = 7 WHERE \"IDM\" = '505'");
    refused(*db_, "505", StoreError::Damaged, "isHechzerMas");
    // A database that cannot be reached.
    ReportDb gone(sqlite() ? dir_.path() + "/missing/D2015.BRK" : location_ + "_missing", ReportDb::Mode::ReadOnly);
    refused(gone, "505", StoreError::DatabaseFailure, "");
    EXPECT_THROW(gone.listNames(ListOrder::ById), StorageError);

    // A read-only session reads, and every write of it is refused.
    ReportDb reader(location_, ReportDb::Mode::ReadOnly);
    NishumInput r;
    EXPECT_TRUE(reader.openNishum("123", r).ok);
    EXPECT_EQ(reader.saveNishum(patternReport("123", 10)).error, StoreError::DatabaseFailure);
    EXPECT_EQ(patternVersion(load("123")), 9);
}

TEST_P(StorageTest, NewReportFromTheTemplateRowListAndDelete) {
    // A new report is the template row, which no list shows and no delete takes.
    db_->execRaw("UPDATE \"tblDetails\" SET \"N150\" = 5 WHERE \"IDM\" = 'NewInit'");
    EXPECT_EQ(count(rowsOf("tblDetails1", "NewInit")), 1);
    NishumInput r = patternReport("123", 1), expected;
    ASSERT_TRUE(db_->newNishum(r).ok);
    expected.Yegia.N150 = Amount(5);
    EXPECT_EQ(firstDifference(r, expected), "");
    EXPECT_TRUE(db_->listNames(ListOrder::ById).empty());

    const char* people[][3] = {{"300", "כהן", "דנה"}, {"100", "לוי", "אבי"}, {"200", "אברהם", "רות"}};
    for (auto& p : people) {
        NishumInput person;
        person.Pratim.IDM = p[0];
        person.Pratim.LastNameM = p[1];
        person.Pratim.FirstNameM = p[2];
        ASSERT_TRUE(db_->saveNishum(person).ok);
    }
    auto ids = [&](ListOrder o) {
        std::string s;
        for (const NameRow& row : db_->listNames(o)) s += row.dID + "|" + row.dName + ";";
        return s;
    };
    EXPECT_EQ(ids(ListOrder::ByName), "200|אברהם רות;300|כהן דנה;100|לוי אבי;");
    EXPECT_EQ(ids(ListOrder::ById), "100|לוי אבי;200|אברהם רות;300|כהן דנה;");

    // Delete takes the main row only; nothing chosen, nothing goes.
    EXPECT_TRUE(db_->deleteNishum("").ok);
    ASSERT_TRUE(db_->deleteNishum("200").ok);
    EXPECT_EQ(ids(ListOrder::ById), "100|לוי אבי;300|כהן דנה;");
    EXPECT_EQ(count(rowsOf("tblDetails1", "200")), 1);
    EXPECT_FALSE(db_->openNishum("200", r).ok);
}

TEST_P(StorageTest, BatchReadGivesEveryReportInIdOrder) {
    for (const char* id : {"30", "4", "10", "B", "a"}) ASSERT_TRUE(db_->saveNishum(patternReport(id, 2)).ok);
    db_->execRaw("UPDATE \"tblDetails\" SET \"isMale\" = 2 WHERE \"IDM\" = '4'");
    std::vector<std::string> seen;
    db_->forEachStored([&](const StoredReport& s) {
        seen.push_back(s.id);
        if (s.id == "4") {
            EXPECT_FALSE(s.ok);
            EXPECT_NE(s.error.find("isMale"), std::string::npos) << s.error;
        } else {
            EXPECT_EQ(s.ok ? patternProblem(s.report, s.id) : s.error, "");
        }
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"10", "30", "4", "B", "a"}));
}

TEST_P(StorageTest, StructureOfANewerProgramIsRefused) {
    db_->ensureReady();
    db_->execRaw("UPDATE \"zelmorSchema\" SET \"version\" = 99");
    EXPECT_EQ(thrownKind([&] { ReportDb(location_).ensureReady(); }), StoreError::NewerDatabase);
    NishumInput r;
    EXPECT_EQ(ReportDb(location_).openNishum("1", r).error, StoreError::NewerDatabase);
}

ZELMOR_STORAGE_BACKENDS(StorageTest);

}  // namespace
}  // namespace zelmor::storage::testing
