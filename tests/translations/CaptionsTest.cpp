// Captions come from the compiled caption sets by the TORVIK_LANG rule; the Japanese set is complete.
#include "frame/CaptionTranslator.h"
#include "frame/Globals.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"

#include <QAbstractButton>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using nxr::Globals::Caption;

struct LanguageScope
{
    explicit LanguageScope(const char* value)
    {
        if (value)
            ::setenv("TORVIK_LANG", value, 1);
        else
            ::unsetenv("TORVIK_LANG");
    }
    ~LanguageScope() { ::unsetenv("TORVIK_LANG"); }
};

TEST(Captions, TheLanguageRuleChoosesTheCaptionSet)
{
    // "Cancel" is in the Japanese set; the table gives no Japanese text of its own.
    struct Case
    {
        const char* lang;
        const char* expected;
    } cases[] = {
        {"jp", "キャンセル"},  {" KN ", "キャンセル"}, {"eg", "Cancel"},
        {"default", "Cancel"}, {"fr", "Cancel"},       {nullptr, "Cancel"},
    };
    for (const Case& c : cases) {
        LanguageScope scope(c.lang);
        EXPECT_EQ(Caption(QStringLiteral("Cancel")).pick(), QString::fromUtf8(c.expected))
            << (c.lang ? c.lang : "(unset)");
    }
}

TEST(Captions, TextsOutsideTheSetFallBackToTheTableThenToEnglish)
{
    LanguageScope scope("jp");
    EXPECT_EQ(nxr::Globals::translatedCaption(QStringLiteral("Not a caption")), QString());
    EXPECT_EQ(Caption(QStringLiteral("Not a caption"), QStringLiteral("表")).pick(), QStringLiteral("表"));
    EXPECT_EQ(Caption(QStringLiteral("Not a caption")).pick(), QStringLiteral("Not a caption"));
    // The compiled set wins over a table's own text.
    EXPECT_EQ(Caption(QStringLiteral("Cancel"), QStringLiteral("取消")).pick(),
              QString::fromUtf8("キャンセル"));
}

TEST(Captions, ControlsShowJapaneseWithTorvikLangJp)
{
    LanguageScope scope("jp");
    NXRViewButtons buttons;
    EXPECT_EQ(buttons.buttonControl(vvb_ContinuousAcquire)->toolTip(), QString::fromUtf8("ライブ表示"));
    EXPECT_EQ(buttons.buttonControl(vvb_LaserOn)->toolTip(), QString::fromUtf8("レーザー オン/オフ"));
    NXRImageDisplay display;
    QStringList texts;
    for (const QLabel* label : display.findChildren<QLabel*>())
        texts << label->text();
    for (const QPushButton* button : display.findChildren<QPushButton*>())
        texts << button->text();
    EXPECT_TRUE(texts.contains(QString::fromUtf8("編集の終了:")))
        << texts.join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(texts.contains(QString::fromUtf8("キャンセル")))
        << texts.join(QLatin1Char('|')).toStdString();
}

TEST(Captions, TheJapaneseSetIsCompleteAndCompiledIn)
{
    QFile file(QStringLiteral(JP_TS_FILE));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    int messages = 0;
    QString source;
    LanguageScope scope("jp");
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        if (reader.name() == QLatin1String("source")) {
            source = reader.readElementText();
        } else if (reader.name() == QLatin1String("translation")) {
            ++messages;
            EXPECT_TRUE(reader.attributes().value(QLatin1String("type")).isEmpty()) << source.toStdString();
            const QString translation = reader.readElementText();
            EXPECT_FALSE(translation.isEmpty()) << source.toStdString();
            // What the library answers is what the file says.
            EXPECT_EQ(nxr::Globals::translatedCaption(source), translation) << source.toStdString();
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_GT(messages, 10);
}

} // namespace
