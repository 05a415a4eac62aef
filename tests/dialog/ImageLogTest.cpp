// The image log model, its selector and the time logger.

#include "imagedisplay/dialog/ImageLog.h"
#include "frame/ClassRegistry.h"
#include "imagedisplay/dialog/NXRTimeLogger.h"

#include <QThread>

#include <gtest/gtest.h>

#include <memory>

using namespace nxr;

namespace {

QStringList dateOrder(const clsLogDataList& log)
{
    QStringList out;
    for (const auto& d : log.newestFirst())
        out << d.date;
    return out;
}

TEST(ImageLog, LevelsAreMadeOnceKeysAreExactAndClearingEmptiesAll)
{
    clsLogDataList log;
    log.AddLogImage("2026-11-22", "Weld", "10:00:01", "MC:\\LOG\\A.PNG");
    log.AddLogImage("2026-11-22", "Weld", "10:00:02", "MC:\\LOG\\B.PNG");
    log.AddLogImage("2026-11-22", "Glue", "10:00:01", "MC:\\LOG\\C.PNG");
    log.AddLogImage("2026-11-21", "Weld", "09:00:00", "first");
    log.AddLogImage("2026-11-21", "Weld", "09:00:00", "MC:\\LOG\\D.PNG"); // the same path: replaced
    EXPECT_EQ(log.dateCount(), 2);
    EXPECT_EQ(log.imageCount(), 4);
    ASSERT_NE(log.date("2026-11-22"), nullptr);
    EXPECT_EQ(log.date("2026-11-22")->Processes.count(), 2);
    EXPECT_EQ(log.date("2026-11-22")->Processes.item("Weld")->Images.count(), 2);
    // The same time stamp under two processes is two images.
    EXPECT_EQ(log.find("2026-11-22", "Glue", "10:00:01")->imageId, "MC:\\LOG\\C.PNG");
    EXPECT_EQ(log.find("2026-11-22", "Weld", "10:00:01")->imageId, "MC:\\LOG\\A.PNG");
    EXPECT_EQ(log.find("2026-11-21", "Weld", "09:00:00")->imageId, "MC:\\LOG\\D.PNG");
    // Missing at each level; keys are exact (case and blanks count).
    EXPECT_EQ(log.date("x"), nullptr);
    for (const auto& [d, p, t] : {std::tuple{"x", "Weld", "09:00:00"},
                                  {"2026-11-21", "x", "09:00:00"},
                                  {"2026-11-21", "Weld", "x"},
                                  {"2026-11-21", "weld", "09:00:00"},
                                  {"2026-11-21", "Weld ", "09:00:00"}})
        EXPECT_FALSE(log.find(d, p, t)) << d << "/" << p << "/" << t;

    log.Clear();
    EXPECT_EQ(log.dateCount(), 0);
    EXPECT_EQ(log.imageCount(), 0);
    EXPECT_FALSE(log.find("2026-11-22", "Glue", "10:00:01"));
    EXPECT_TRUE(log.newestFirst().empty());
    log.AddLogImage("2026-11-22", "Glue", "10:00:01", "again");
    EXPECT_EQ(log.find("2026-11-22", "Glue", "10:00:01")->imageId, "again");
}

TEST(ImageLog, NewestFirstByDateAndTimeWhateverTheOrderOfAdding)
{
    struct Case
    {
        QStringList added;    // in order of adding
        QStringList expected; // newest first
    };
    const Case cases[] = {
        {{"2026-11-21", "2026-11-22", "2025-12-31"}, {"2026-11-22", "2026-11-21", "2025-12-31"}},
        {{"22-NOV-26", "03-DEC-26", "30-JAN-27"}, {"30-JAN-27", "03-DEC-26", "22-NOV-26"}},
        {{"22.11.2026", "01.12.2026", "09.11.2026"}, {"01.12.2026", "22.11.2026", "09.11.2026"}},
        // Not dates: by text, numbers compared as numbers.
        {{"run 9", "run 10", "run 2"}, {"run 10", "run 9", "run 2"}},
    };
    for (const Case& c : cases) {
        clsLogDataList log;
        for (const QString& d : c.added)
            log.AddLogImage(d, "p", "t", "id");
        EXPECT_EQ(dateOrder(log), c.expected) << c.added.join(",").toStdString();
    }

    clsLogDataList log;
    for (const char* t : {"09:59:59", "10:00:00.250", "10:00:00.050", "8:00:00"})
        log.AddLogImage("d", "Weld", t, t);
    log.AddLogImage("d", "Assembly", "07:00:00", "x");
    const auto view = log.newestFirst();
    ASSERT_EQ(view.size(), 1u);
    ASSERT_EQ(view[0].processes.size(), 2u);
    EXPECT_EQ(view[0].processes[0].process, "Assembly");
    QStringList stamps;
    for (const LogEntry& e : view[0].processes[1].images)
        stamps << e.timeStamp;
    EXPECT_EQ(stamps, (QStringList{"10:00:00.250", "10:00:00.050", "09:59:59", "8:00:00"}));
}

TEST(LogSelector, RoundTripsAnyTextAndRefusesOthers)
{
    const LogEntry entries[] = {
        {"2026-11-22", "Weld seam", "10:05:00", "MC:\\LOG\\P1_0001.PNG"},
        {"a|b", "c,d", "[\"]", "\\\\"},
        {"", "", "", ""},
        {"日付", "工程\n2", "\t", "{\"x\":1}"},
    };
    for (const LogEntry& e : entries) {
        const QString s = LogSelector::encode(e);
        const auto back = LogSelector::decode(s);
        ASSERT_TRUE(back) << s.toStdString();
        EXPECT_EQ(*back, e) << s.toStdString();
    }
    // Fields that would run together under a plain separator stay apart.
    EXPECT_NE(LogSelector::encode({"a|b", "c", "d", "e"}), LogSelector::encode({"a", "b|c", "d", "e"}));
    EXPECT_EQ(LogSelector::encode({"d", "p", "t", "i"}), "[\"d\",\"p\",\"t\",\"i\"]");
    for (const char* bad :
         {"", "d|p|t", "[\"a\",\"b\",\"c\"]", "[1,2,3,4]", "{\"a\":1}", "[\"a\",\"b\",\"c\",\"d\""})
        EXPECT_FALSE(LogSelector::decode(bad)) << bad;
}

TEST(TimeLogger, MeasuresAKnownSleepAndIsCreatableByName)
{
    std::unique_ptr<QObject> created(ClassRegistry::instance().create("NXRTimeLogger"));
    auto* logger = qobject_cast<NXRTimeLogger*>(created.get());
    ASSERT_NE(logger, nullptr);
    logger->StartTime();
    QThread::msleep(200);
    const double elapsed = logger->ElapsedTime();
    // Never less than the sleep; a loaded machine may add to it, so the upper bound is generous.
    EXPECT_GE(elapsed, 0.199);
    EXPECT_LT(elapsed, 1.5);
    logger->StopTime(); // does nothing: the time keeps running from the start
    QThread::msleep(50);
    EXPECT_GT(logger->ElapsedTime(), elapsed + 0.049);
    // A new start begins again from zero.
    logger->StartTime();
    EXPECT_LT(logger->ElapsedTime(), 0.1);
}

} // namespace
