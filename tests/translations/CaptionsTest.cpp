// Captions come from the compiled caption sets by the TORVIK_LANG rule; the Japanese set is complete.
#include "frame/CaptionTranslator.h"
#include "frame/Globals.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/dialog/OpenSaveDialog.h"
#include "mask/MaskTypes.h"
#include "mask/NXRMaskToolButtons.h"
#include "plot3d/NXR3DPlot.h"
#include "plot3d/PointPicker.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

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

// One caption of each control, read from a freshly made control: the English text without
// TORVIK_LANG, the Japanese one from the compiled set with it.
TEST(Captions, EveryControlFollowsTheLanguage)
{
    using Read = std::function<QString()>;
    const auto radio = [](QWidget& w, const char* name) {
        return w.findChild<QAbstractButton*>(QString::fromLatin1(name))->text();
    };
    struct Case
    {
        const char* what;
        Read read;
        const char* english;
        const char* japanese;
    } cases[] = {
        {"mask command", [] { return NXRMaskToolButtons().commandButton(KSEMaskCommand_MaskAll)->text(); },
         "All", "全て"},
        {"mask tool tip", [] { return NXRMaskToolButtons().toolButton(KSEMaskTool_Fill)->toolTip(); },
         "Fill an area", "塗りつぶし"},
        {"dialog title", [] { return nxr::OpenSaveDialog({}).windowTitle(); }, "Open image", "画像を開く"},
        {"dialog source",
         [&] {
             nxr::OpenSaveDialog d({});
             return radio(d, "opt_Remote");
         },
         "Robot controller", "ロボットコントローラ"},
        {"dialog save choice",
         [] {
             nxr::OpenSaveDialog d({});
             d.ShowSaveDialog(true);
             const QString text = d.findChild<QComboBox*>("cmb_SaveWhat")->itemText(0);
             d.reject();
             return text;
         },
         "Image as shown (colour)", "表示中の画像 (カラー)"},
        {"3D plot frame", [] { return NXR3DPlot().findChild<QGroupBox*>("fra_RotationCenter")->title(); },
         "Rotation center", "回転中心"},
        {"3D plot check box",
         [] { return NXR3DPlot().findChild<QCheckBox*>("chk_OffsetReferencelPosition")->text(); },
         "Offset reference position", "オフセット基準位置"},
        {"3D plot centre list",
         [] {
             NXR3DPlot plot;
             plot.Reset();
             return plot.findChild<QComboBox*>("cmb_RotationCenter")->itemText(0);
         },
         "User Frame", "ユーザフレーム"},
        {"3D plot point tip",
         [] {
             nxr::plot3d::CalibrationScene scene;
             nxr::plot3d::Camera camera;
             camera.viewName = QStringLiteral("CAM1");
             scene.addCamera(camera);
             nxr::plot3d::PickedPoint picked;
             picked.kind = nxr::plot3d::PickedPoint::Kind::Camera;
             picked.camera = 0;
             return nxr::plot3d::tooltipText(scene, picked);
         },
         "Camera CAM1\nX 0.00  Y 0.00  Z 0.00 mm", "カメラ CAM1\nX 0.00  Y 0.00  Z 0.00 mm"},
    };
    for (const Case& c : cases) {
        {
            LanguageScope scope(nullptr);
            EXPECT_EQ(c.read(), QString::fromUtf8(c.english)) << c.what;
        }
        LanguageScope scope("jp");
        EXPECT_EQ(c.read(), QString::fromUtf8(c.japanese)) << c.what;
    }
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
