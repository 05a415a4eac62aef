// The mask tool palette through its scripting interface and through clicks.

#include "frame/ClassRegistry.h"
#include "mask/NXRMaskToolButtons.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

namespace {

class Palette : public ::testing::Test
{
protected:
    void SetUp() override
    {
        palette = std::make_unique<NXRMaskToolButtons>();
        palette->resize(200, 120);
        palette->show();
        errors = std::make_unique<QSignalSpy>(palette.get(), &NXRMaskToolButtons::OnError);
        tools = std::make_unique<QSignalSpy>(palette.get(), &NXRMaskToolButtons::OnToolSelected);
        sizes = std::make_unique<QSignalSpy>(palette.get(), &NXRMaskToolButtons::OnToolSizeSelected);
        commands = std::make_unique<QSignalSpy>(palette.get(), &NXRMaskToolButtons::OnCommandClicked);
    }
    int events() const { return int(tools->count() + sizes->count() + commands->count()); }

    std::unique_ptr<NXRMaskToolButtons> palette;
    std::unique_ptr<QSignalSpy> errors, tools, sizes, commands;
};

TEST_F(Palette, CommandEnabledParsesNumberAndFlag)
{
    QAbstractButton* undo = palette->commandButton(KSEMaskCommand_Undo);
    for (const char* value : {"2,False", " 2 , False ", "2, 0"}) {
        undo->setEnabled(true);
        palette->SetProperty("CommandEnabled", value);
        EXPECT_FALSE(undo->isEnabled()) << value;
    }
    palette->SetProperty("CommandEnabled", "2, True");
    EXPECT_TRUE(undo->isEnabled());
    palette->SetProperty("CommandEnabled", "0, False");
    EXPECT_FALSE(palette->commandButton(KSEMaskCommand_MaskAll)->isEnabled());
    // Other command numbers are ignored without a word, Help among them.
    for (const char* value : {"5, False", "3, False", "-1, False"})
        palette->SetProperty("CommandEnabled", value);
    EXPECT_TRUE(palette->commandButton(KSEMaskCommand_Help)->isEnabled());
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(errors->count(), 0);
}

TEST_F(Palette, BadValuesReportTheirKeysTextsAndChangeNothing)
{
    const struct
    {
        const char* key;
        const char* value;
        const char* text;
    } cases[] = {
        {"CommandEnabled", "2 False",
         "Error setting CommandEnabled property: invalid PropertyValue argument (2 False)"},
        {"CommandEnabled", ", True",
         "Error setting CommandEnabled property: could not parse Command or Value (, True)"},
        {"CommandEnabled", "2,  ",
         "Error setting CommandEnabled property: could not parse Command or Value (2,  )"},
        {"CommandEnabled", "x, True", "Error setting CommandEnabled property: Type mismatch"},
        {"CommandEnabled", "2, maybe", "Error setting CommandEnabled property: Type mismatch"},
        {"ToolsAndSizesEnabled", "maybe", "Error setting ToolsAndSizesEnabled property: Type mismatch"},
        {"HourglassCursor", "", "Error setting HourglassCursor property: Type mismatch"},
        {"ProgressCursor", "yes", "Error setting ProgressCursor property: Type mismatch"},
        {"BackColor", "red", "Error setting BackColor property: Type mismatch"},
        {"SelectedTool", "1", "Error: unknown property (SelectedTool)"},
        {"commandenabled", "2, True", "Error: unknown property (commandenabled)"}};
    int expectedErrors = 0;
    for (const auto& c : cases) {
        palette->SetProperty(c.key, c.value);
        EXPECT_EQ(errors->count(), ++expectedErrors) << c.key << " " << c.value;
        EXPECT_EQ(palette->GetProperty("LastErrorString"), c.text);
        EXPECT_TRUE(palette->commandButton(KSEMaskCommand_Undo)->isEnabled());
        EXPECT_TRUE(palette->toolButton(KSEMaskTool_Fill)->isEnabled());
    }
    EXPECT_EQ(palette->GetProperty("BackColor"), "");
    EXPECT_EQ(palette->LastErrorString(), "Error: unknown property (BackColor)");
}

TEST_F(Palette, KeysChangeTheButtonsAndTheSelectionWithoutEvents)
{
    EXPECT_EQ(palette->GetProperty("SelectedToolSize"), "1");
    palette->toolButton(KSEMaskTool_Fill)->setChecked(true); // from code, on the button itself
    EXPECT_EQ(palette->GetProperty("SelectedTool"), "4");
    palette->setSelectedTool(KSEMaskTool_None);
    palette->setSelectedToolSize(KSEMaskToolSize_None);
    EXPECT_EQ(palette->GetProperty("SelectedTool"), "-1");
    EXPECT_EQ(palette->GetProperty("SelectedToolSize"), "-1");
    palette->setSelectedTool(KSEMaskTool_Rectangle);
    EXPECT_TRUE(palette->toolButton(KSEMaskTool_Rectangle)->isChecked());

    palette->SetProperty("ToolsAndSizesEnabled", "False");
    for (int i = 0; i <= 4; ++i)
        EXPECT_FALSE(palette->toolButton(i)->isEnabled()) << i;
    for (int i = 0; i <= 2; ++i)
        EXPECT_FALSE(palette->sizeButton(i)->isEnabled()) << i;
    EXPECT_TRUE(palette->commandButton(KSEMaskCommand_Undo)->isEnabled());
    palette->SetProperty("ToolsAndSizesEnabled", "True");
    EXPECT_TRUE(palette->toolButton(KSEMaskTool_Freehand)->isEnabled());

    for (const auto& [key, value, shape] : {std::tuple{"HourglassCursor", "True", Qt::WaitCursor},
                                            {"ProgressCursor", "True", Qt::BusyCursor},
                                            {"ProgressCursor", "False", Qt::ArrowCursor}}) {
        palette->SetProperty(key, value);
        EXPECT_EQ(palette->cursor().shape(), shape) << key << value;
    }

    palette->SetProperty("BackColor", QString::number(0x0000FF)); // red in the page's colour order
    EXPECT_EQ(palette->palette().color(QPalette::Window), QColor(255, 0, 0));
    EXPECT_EQ(events(), 0);
    EXPECT_EQ(errors->count(), 0);
}

TEST_F(Palette, ClicksRaiseEventsWithTheButtonsNumbers)
{
    QTest::mouseClick(palette->toolButton(KSEMaskTool_Ellipse), Qt::LeftButton);
    QTest::mouseClick(palette->toolButton(KSEMaskTool_Rectangle), Qt::LeftButton);
    QTest::mouseClick(palette->sizeButton(KSEMaskToolSize_Small), Qt::LeftButton);
    for (int c = 0; c <= 3; ++c)
        QTest::mouseClick(palette->commandButton(c), Qt::LeftButton);
    ASSERT_EQ(tools->count(), 2);
    EXPECT_EQ(tools->at(0).at(0).toInt(), KSEMaskTool_Ellipse);
    EXPECT_EQ(tools->at(1).at(0).toInt(), KSEMaskTool_Rectangle);
    ASSERT_EQ(sizes->count(), 1);
    EXPECT_EQ(sizes->at(0).at(0).toInt(), KSEMaskToolSize_Small);
    ASSERT_EQ(commands->count(), 4);
    for (int c = 0; c <= 3; ++c)
        EXPECT_EQ(commands->at(c).at(0).toInt(), c);
    EXPECT_EQ(palette->GetProperty("SelectedTool"), "3");
    EXPECT_EQ(palette->GetProperty("SelectedToolSize"), "0");

    // A disabled command raises nothing.
    palette->SetProperty("CommandEnabled", "2, False");
    QTest::mouseClick(palette->commandButton(KSEMaskCommand_Undo), Qt::LeftButton);
    EXPECT_EQ(commands->count(), 4);
}

TEST_F(Palette, AClickLeavesTheFocusOnTheInvisibleButton)
{
    palette->activateWindow();
    if (!QTest::qWaitForWindowActive(palette.get()))
        GTEST_SKIP() << "the window cannot become active on this platform";
    QTest::mouseClick(palette->toolButton(KSEMaskTool_Fill), Qt::LeftButton);
    EXPECT_TRUE(palette->focusButton()->hasFocus());
    EXPECT_EQ(palette->focusButton()->size(), QSize(0, 0));
    palette->focusButton()->clearFocus();
    QTest::mouseClick(palette->commandButton(KSEMaskCommand_Help), Qt::LeftButton);
    EXPECT_TRUE(palette->focusButton()->hasFocus());
}

TEST(PaletteCreation, ByNameWithLocalisedCaptions)
{
    qunsetenv("TORVIK_LANG");
    std::unique_ptr<QObject> made(nxr::ClassRegistry::instance().create("NexaroControls.NXRMaskToolButtons"));
    auto* palette = qobject_cast<NXRMaskToolButtons*>(made.get());
    ASSERT_NE(palette, nullptr);
    EXPECT_EQ(palette->commandButton(KSEMaskCommand_Undo)->text(), "Undo");
    EXPECT_NE(palette->findChild<QWidget*>("fra_ToolSelection"), nullptr);
    EXPECT_NE(palette->findChild<QAbstractButton*>("opt_Tool4"), nullptr);
    EXPECT_NE(palette->findChild<QAbstractButton*>("cmd_MaskCommand3"), nullptr);

    qputenv("TORVIK_LANG", " KN ");
    NXRMaskToolButtons japanese;
    EXPECT_EQ(japanese.commandButton(KSEMaskCommand_Undo)->text(), QString::fromUtf8("元に戻す"));
    qunsetenv("TORVIK_LANG");
}

} // namespace
