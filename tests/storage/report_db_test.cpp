#include <algorithm>

#include "storage/report_pattern.h"
#include "storage/storage_suite.h"

namespace zelmor::storage::testing {
namespace {

const std::string kSaveTitle = "שמירת דו\"ח";
const std::string kSaveErrorHead = "שגיאה בשמירת הדו\"ח: ";
const std::string kContact = "נא ליצור קשר עם חברת Zelmor";

std::string rowsOf(const std::string& table, const std::string& id) {
    return "SELECT COUNT(*) FROM \"" + table + "\" WHERE \"IDM\" = '" + id + "'";
}

TEST_P(StorageTest, EveryFieldRoundTripsAndTextsAreTrimmed) {
    NishumInput saved = patternReport("012345674", 3);
    saved.Pratim.FirstNameM = "  משה ";
    saved.Pratim.BirthDateM = Date();  // no date
    ASSERT_TRUE(db_->saveNishum(saved).ok);

    NishumInput loaded;
    const StoreOutcome out = db_->openNishum("012345674", loaded);
    ASSERT_TRUE(out.ok) << out.text;
    saved.Pratim.FirstNameM = "משה";
    EXPECT_EQ(firstDifference(loaded, saved), "");
    EXPECT_TRUE(loaded.Pratim.BirthDateM.isNull());
    EXPECT_EQ(db_->queryScalar("SELECT \"BirthDateM\" FROM \"tblDetails\" WHERE \"IDM\" = '012345674'"), "0");
}

TEST_P(StorageTest, SavingTwiceLeavesOneRowInEachTable) {
    ASSERT_TRUE(db_->saveNishum(patternReport("111", 1)).ok);
    const StoreOutcome out = db_->saveNishum(patternReport("111", 2));
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.title, kSaveTitle);
    EXPECT_EQ(out.text, "הדו\"ח נשמר בהצלחה");
    EXPECT_EQ(count(rowsOf("tblDetails", "111")), 1);
    EXPECT_EQ(count(rowsOf("tblDetails1", "111")), 1);
    NishumInput loaded;
    ASSERT_TRUE(db_->openNishum("111", loaded).ok);
    EXPECT_EQ(patternProblem(loaded, "111"), "");
    EXPECT_EQ(patternVersion(loaded), 2);
}

TEST_P(StorageTest, SaveUnderChangedIdLeavesTheOldRows) {
    NishumInput r = patternReport("111", 1);
    ASSERT_TRUE(db_->saveNishum(r).ok);
    r.Pratim.IDM = "222";
    ASSERT_TRUE(db_->saveNishum(r).ok);
    for (const char* table : {"tblDetails", "tblDetails1"}) {
        EXPECT_EQ(count(rowsOf(table, "111")), 1) << table;
        EXPECT_EQ(count(rowsOf(table, "222")), 1) << table;
    }
}

TEST_P(StorageTest, NullReadsAsZeroOnlyWhereAllowed) {
    NishumInput r = patternReport("333", 4);
    ASSERT_GT(r.Pturot.N256.value() * r.Rechush.N067.value(), 0);
    ASSERT_TRUE(db_->saveNishum(r).ok);
    db_->execRaw("UPDATE \"tblDetails\" SET \"N256\" = NULL WHERE \"IDM\" = '333'");
    db_->execRaw("UPDATE \"tblDetails1\" SET \"N067\" = NULL, \"N260_1\" = NULL WHERE \"IDM\" = '333'");
    NishumInput loaded;
    ASSERT_TRUE(db_->openNishum("333", loaded).ok);
    EXPECT_EQ(loaded.Pturot.N256, Amount(0));
    EXPECT_EQ(loaded.Rechush.N067, Amount(0));
    EXPECT_EQ(loaded.Nekudot.N260_1, 0);
    EXPECT_EQ(loaded.Nekudot.N260, SumN260(loaded.Nekudot));
    // The other columns refuse Null: such a row cannot come to be.
    EXPECT_THROW(db_->execRaw("UPDATE \"tblDetails\" SET \"N150\" = NULL WHERE \"IDM\" = '333'"), StorageError);
    EXPECT_THROW(db_->execRaw("UPDATE \"tblDetails\" SET \"LastNameM\" = NULL WHERE \"IDM\" = '333'"), StorageError);
    EXPECT_THROW(db_->execRaw("UPDATE \"tblDetails1\" SET \"isHechzerMas\" = NULL WHERE \"IDM\" = '333'"),
                 StorageError);
}

TEST_P(StorageTest, N260IsNeverStoredAndComesBackAsTheSumOfItsParts) {
    NishumInput r = patternReport("444", 5);
    r.Nekudot.N260 = 999;  // whatever the open report held
    ASSERT_TRUE(db_->saveNishum(r).ok);
    for (const char* table : {"tblDetails", "tblDetails1"}) {
        const std::string columns =
            sqlite() ? std::string("SELECT COUNT(*) FROM pragma_table_info('") + table + "') WHERE name = "
                     : std::string("SELECT COUNT(*) FROM information_schema.columns WHERE table_name = '") + table +
                           "' AND column_name = ";
        EXPECT_EQ(count(columns + "'N260'"), 0) << table;
        EXPECT_EQ(count(columns + "'N260_1'"), table == std::string("tblDetails1") ? 1 : 0) << table;
    }
    NishumInput loaded;
    ASSERT_TRUE(db_->openNishum("444", loaded).ok);
    EXPECT_EQ(loaded.Nekudot.N260, SumN260(r.Nekudot));
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
        copyField(f, before, want);
        if (zero) zeroField(f, want);
    }
    want.Nekudot.N260 = SumN260(want.Nekudot);
    EXPECT_EQ(firstDifference(loaded, want), "");
    EXPECT_EQ(loaded.Nekudot.N260, 0);
    EXPECT_NE(before.Nikuim.N244, Amount(0));
    EXPECT_EQ(loaded.Nikuim.N244, before.Nikuim.N244);
}

TEST_P(StorageTest, EmptyTextsAreStoredEmptyAndNeverNull) {
    NishumInput r;
    r.Pratim.IDM = "666";
    ASSERT_TRUE(db_->saveNishum(r).ok);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"LastNameM\" IS NULL OR \"Address\" IS NULL"), 0);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" = '666' AND \"LastNameM\" = '' "
                    "AND \"Address\" = '' AND \"BirthDateM\" = 0"),
              1);
}

TEST_P(StorageTest, IdsAreTrimmedCheckedAndNeverPartOfTheStatement) {
    // No id, or blanks only: the system's message, nothing stored.
    NishumInput r = patternReport("   ", 1);
    StoreOutcome out = db_->saveNishum(r);
    EXPECT_FALSE(out.ok);
    EXPECT_EQ(out.title, kSaveTitle);
    EXPECT_EQ(out.icon, MessageIcon::Exclamation);
    EXPECT_EQ(out.text, "לא ניתן לשמור ללא מספר ת.ז.\nנא להזין ת.ז. ולשמור לאחר מכן");

    // A double quotation mark or a control character is refused before the database.
    for (const std::string& bad : {std::string("12\"3"), std::string("12\n3"), std::string("12\0" "3", 4)}) {
        r.Pratim.IDM = bad;
        out = db_->saveNishum(r);
        EXPECT_FALSE(out.ok);
        EXPECT_EQ(out.icon, MessageIcon::Exclamation);
        NishumInput probe;
        EXPECT_FALSE(db_->openNishum(bad, probe).ok);
    }
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\""), 1);  // the template alone

    // Outer blanks go; the id is stored trimmed in both tables and opens either way.
    r = patternReport(" 777 ", 2);
    ASSERT_TRUE(db_->saveNishum(r).ok);
    EXPECT_EQ(count(rowsOf("tblDetails", "777")), 1);
    EXPECT_EQ(count(rowsOf("tblDetails1", "777")), 1);
    NishumInput loaded;
    ASSERT_TRUE(db_->openNishum("\t777  ", loaded).ok);
    EXPECT_EQ(loaded.Pratim.IDM, "777");

    // Quotes of SQL are plain characters of an id.
    const std::string evil = "1'; DROP TABLE \"tblDetails\"; --";
    ASSERT_TRUE(db_->saveNishum(patternReport("x'; DROP TABLE tblDetails1; --", 3)).ok);
    ASSERT_FALSE(db_->saveNishum(patternReport(evil, 3)).ok);  // holds a double quotation mark
    ASSERT_TRUE(db_->openNishum("x'; DROP TABLE tblDetails1; --", loaded).ok);
    EXPECT_EQ(patternProblem(loaded, "x'; DROP TABLE tblDetails1; --"), "");
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\""), 3);
    ASSERT_TRUE(db_->deleteNishum("x'; DROP TABLE tblDetails1; --").ok);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\""), 2);
}

TEST_P(StorageTest, FailureBetweenDeleteAndInsertLeavesTheOldReport) {
    ASSERT_TRUE(db_->saveNishum(patternReport("888", 1)).ok);
    for (const char* step : {"deleted", "inserted"}) {
        db_->setSaveStepHook([step](const char* at) {
            if (std::string(at) == step) throw std::runtime_error("disk full");
        });
        const StoreOutcome out = db_->saveNishum(patternReport("888", 2));
        EXPECT_FALSE(out.ok);
        EXPECT_EQ(out.icon, MessageIcon::Stop);
        EXPECT_TRUE(out.text.starts_with(kSaveErrorHead + "disk full\n" + kContact)) << out.text;
        EXPECT_NE(out.text.find("לא שונה"), std::string::npos) << "says the stored report is unchanged";
        NishumInput loaded;
        ASSERT_TRUE(db_->openNishum("888", loaded).ok);
        EXPECT_EQ(patternVersion(loaded), 1) << step;
        EXPECT_EQ(patternProblem(loaded, "888"), "") << step;
    }
    db_->setSaveStepHook({});
    ASSERT_TRUE(db_->saveNishum(patternReport("888", 2)).ok);
}

TEST_P(StorageTest, FailedOpenLeavesTheOpenReportAsItWas) {
    const NishumInput open = patternReport("123", 9);
    NishumInput r = open;
    StoreOutcome out = db_->openNishum("404", r);
    EXPECT_FALSE(out.ok);
    EXPECT_NE(out.text.find("404"), std::string::npos);
    EXPECT_EQ(firstDifference(r, open), "");

    // A stored value this program never writes: refused whole, naming the column.
    ASSERT_TRUE(db_->saveNishum(patternReport("505", 1)).ok);
    db_->execRaw("UPDATE \"tblDetails1\" SET \"isHechzerMas\" = 7 WHERE \"IDM\" = '505'");
    out = db_->openNishum("505", r);
    EXPECT_FALSE(out.ok);
    EXPECT_NE(out.text.find("isHechzerMas"), std::string::npos) << out.text;
    EXPECT_EQ(firstDifference(r, open), "");

    // A database that cannot be reached.
    const std::string unreachable = sqlite() ? dir_.path() + "/missing/D2015.BRK"
                                             : location_.substr(0, location_.rfind('/')) + "/no_such_db";
    ReportDb gone(unreachable, ReportDb::Mode::MustExist);
    out = gone.openNishum("505", r);
    EXPECT_FALSE(out.ok);
    EXPECT_EQ(out.icon, MessageIcon::Stop);
    EXPECT_EQ(firstDifference(r, open), "");
    EXPECT_THROW(gone.listNames(ListOrder::ById), StorageError);
}

TEST_P(StorageTest, NewReportComesFromTheTemplateRow) {
    EXPECT_EQ(count(rowsOf("tblDetails", "NewInit")), 1);
    EXPECT_EQ(count(rowsOf("tblDetails1", "NewInit")), 1);
    db_->execRaw("UPDATE \"tblDetails\" SET \"N150\" = 5, \"IDM\" = 'NewInit' WHERE \"IDM\" = 'NewInit'");
    NishumInput r = patternReport("123", 1);
    ASSERT_TRUE(db_->newNishum(r).ok);
    EXPECT_EQ(r.Pratim.IDM, "");
    EXPECT_EQ(r.Yegia.N150, Amount(5));
    NishumInput expected;
    expected.Yegia.N150 = Amount(5);
    EXPECT_EQ(firstDifference(r, expected), "");
    EXPECT_TRUE(db_->listNames(ListOrder::ById).empty());
}

TEST_P(StorageTest, ListInBothOrdersAndDeleteTheMainRowOnly) {
    const char* people[][3] = {{"300", "כהן", "דנה"}, {"100", "לוי", "אבי"}, {"200", "אברהם", "רות"}};
    for (auto& p : people) {
        NishumInput r;
        r.Pratim.IDM = p[0];
        r.Pratim.LastNameM = p[1];
        r.Pratim.FirstNameM = p[2];
        ASSERT_TRUE(db_->saveNishum(r).ok);
    }
    auto ids = [&](ListOrder o) {
        std::string s;
        for (const NameRow& row : db_->listNames(o)) s += row.dID + "|" + row.dName + ";";
        return s;
    };
    EXPECT_EQ(ids(ListOrder::ByName), "200|אברהם רות;300|כהן דנה;100|לוי אבי;");
    EXPECT_EQ(ids(ListOrder::ById), "100|לוי אבי;200|אברהם רות;300|כהן דנה;");
    EXPECT_EQ(ids(ListOrder::ById), ids(ListOrder::ById));

    EXPECT_TRUE(db_->deleteNishum("").ok);  // nothing chosen: nothing goes
    EXPECT_FALSE(db_->deleteNishum("NewInit").ok);
    ASSERT_TRUE(db_->deleteNishum("200").ok);
    EXPECT_EQ(ids(ListOrder::ById), "100|לוי אבי;300|כהן דנה;");
    EXPECT_EQ(count(rowsOf("tblDetails1", "200")), 1);
    NishumInput r;
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
            ASSERT_TRUE(s.ok) << s.error;
            EXPECT_EQ(patternProblem(s.report, s.id), "");
        }
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"10", "30", "4", "B", "a"}));
}

TEST_P(StorageTest, SaveManyIsAllOrNothing) {
    std::vector<NishumInput> batch = {patternReport("1", 1), patternReport("2", 1)};
    ASSERT_TRUE(db_->saveMany(batch).ok);
    batch = {patternReport("1", 2), patternReport("3", 2)};
    db_->setSaveStepHook([n = 0](const char* at) mutable {
        if (std::string(at) == "inserted" && ++n == 2) throw std::runtime_error("boom");
    });
    EXPECT_FALSE(db_->saveMany(batch).ok);
    NishumInput r;
    ASSERT_TRUE(db_->openNishum("1", r).ok);
    EXPECT_EQ(patternVersion(r), 1);
    EXPECT_FALSE(db_->openNishum("3", r).ok);
}

TEST_P(StorageTest, StructureOfANewerProgramIsRefused) {
    db_->ensureReady();
    db_->execRaw("UPDATE \"zelmorSchema\" SET \"version\" = 99");
    ReportDb later(location_);
    try {
        later.ensureReady();
        FAIL() << "opened a database of a newer structure";
    } catch (const StorageError& e) {
        EXPECT_NE(std::string(e.what()).find("newer"), std::string::npos) << e.what();
    }
}

ZELMOR_STORAGE_BACKENDS(StorageTest);

}  // namespace
}  // namespace zelmor::storage::testing
