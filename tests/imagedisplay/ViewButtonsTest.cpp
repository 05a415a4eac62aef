// The tool bar and the status bar through their scripting interface.

#include "frame/ClassRegistry.h"
#include "imagedisplay/NXRStatusBar.h"
#include "imagedisplay/NXRViewButtons.h"

#include <QAbstractButton>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace {

class ViewButtons : public ::testing::Test
{
protected:
    void SetUp() override
    {
        bar = std::make_unique<NXRViewButtons>();
        bar->resize(600, 30);
        bar->show();
        errors = std::make_unique<QSignalSpy>(bar.get(), &NXRViewButtons::OnError);
        clicks = std::make_unique<QSignalSpy>(bar.get(), &NXRViewButtons::OnButtonClicked);
    }
    QAbstractButton* control(int button) { return bar->buttonControl(button); }

    std::unique_ptr<NXRViewButtons> bar;
    std::unique_ptr<QSignalSpy> errors;
    std::unique_ptr<QSignalSpy> clicks;
};

TEST_F(ViewButtons, ButtonEnabledAcceptsBlanksAroundTheParts)
{
    for (const char* value : {"16,False", "16 , False", "16, False", " 16 ,False "}) {
        control(vvb_Open)->setEnabled(true);
        bar->SetProperty("ButtonEnabled", value);
        EXPECT_FALSE(control(vvb_Open)->isEnabled()) << value;
    }
    bar->SetProperty("ButtonEnabled", "16, True");
    EXPECT_TRUE(control(vvb_Open)->isEnabled());
    EXPECT_EQ(errors->count(), 0);
}

TEST_F(ViewButtons, ButtonKeysReportTheirOwnTextsAndChangeNothing)
{
    struct Case
    {
        const char* key;
        const char* value;
        const char* text;
    };
    const Case cases[] = {
        {"ButtonEnabled", "16", "Error setting ButtonEnabled property: invalid PropertyValue argument (16)"},
        {"ButtonEnabled", "x, True",
         "Error setting ButtonEnabled property: could not parse Button or Value (x, True)"},
        {"ButtonEnabled", "16, maybe",
         "Error setting ButtonEnabled property: could not parse Button or Value (16, maybe)"},
        {"ButtonVisible", "13", "Error setting ButtonVisible property: invalid PropertyValue argument (13)"},
        {"ButtonVisible", ",True",
         "Error setting ButtonVisible property: could not parse Button or Value (,True)"},
        {"ButtonEnabled", "25, False", "Error setting ButtonEnabled property: no such button (25)"},
        {"AcquireEnabled", "sometimes", "Error setting AcquireEnabled property: Type mismatch"},
        {"LiveEnabled", "", "Error setting LiveEnabled property: Type mismatch"},
        {"HourglassCursor", "x", "Error setting HourglassCursor property: Type mismatch"},
        {"NoSuchKey", "1", "Error: unknown property (NoSuchKey)"},
    };
    int expectedErrors = 0;
    for (const Case& c : cases) {
        bar->SetProperty(c.key, c.value);
        EXPECT_EQ(bar->LastErrorString(), QString::fromUtf8(c.text));
        EXPECT_EQ(errors->count(), ++expectedErrors) << c.key << " " << c.value;
        EXPECT_TRUE(control(vvb_Open)->isEnabled());
        EXPECT_FALSE(control(vvb_WindowReset)->isHidden());
        EXPECT_TRUE(control(vvb_Acquire)->isEnabled());
    }
}

TEST_F(ViewButtons, ButtonsWithoutAControlAreSilent)
{
    for (const char* value : {"8, False", "9, False", "14, False", "15, True"}) {
        bar->SetProperty("ButtonVisible", value);
        bar->SetProperty("ButtonEnabled", value);
    }
    EXPECT_EQ(errors->count(), 0);
    EXPECT_EQ(bar->preferredWidth(30), 14 * 30);
}

TEST_F(ViewButtons, VisibilityKeysAndTheirQuestions)
{
    EXPECT_EQ(bar->GetProperty("ImageCaptureButtonsVisible"), "True");
    bar->SetProperty("ButtonVisible", "1, False");
    EXPECT_EQ(bar->GetProperty("ImageCaptureButtonsVisible"), "False");
    bar->SetProperty("ButtonVisible", "13, False");
    EXPECT_EQ(bar->GetProperty("WindowResetButtonVisible"), "False");
    bar->SetProperty("ButtonVisible", "17, False");
    EXPECT_EQ(bar->GetProperty("OpenSaveButtonsVisible"), "False");
    EXPECT_EQ(bar->preferredWidth(30), 11 * 30);

    // The remaining buttons share one row, all of one size, and fill no more than the bar.
    bar->resize(200, 30);
    const QRect first = control(vvb_ContinuousAcquire)->geometry();
    int right = first.right();
    for (int b : {vvb_MouseModePointer, vvb_FitImage, vvb_Open, vvb_LaserOn}) {
        const QRect g = control(b)->geometry();
        EXPECT_EQ(g.size(), first.size()) << b;
        EXPECT_EQ(g.top(), 0);
        EXPECT_GT(g.left(), right - 1);
        right = g.right();
    }
    EXPECT_LE(control(vvb_LaserOn)->geometry().right(), 199);
    EXPECT_EQ(first.width(), 200 / 11);
}

TEST_F(ViewButtons, StateKeys)
{
    bar->SetProperty("Live", "True");
    EXPECT_TRUE(control(vvb_ContinuousAcquire)->isChecked());
    EXPECT_EQ(bar->GetProperty("Live"), "True");
    bar->SetProperty("LiveEnabled", "False");
    EXPECT_FALSE(control(vvb_ContinuousAcquire)->isEnabled());
    bar->SetProperty("LaserOn", "True");
    EXPECT_EQ(bar->GetProperty("LaserOn"), "True");
    bar->SetProperty("LaserOn", "true"); // checked exactly when the value is "True"
    EXPECT_EQ(bar->GetProperty("LaserOn"), "False");
    bar->SetProperty("ButtonEnabled", "19, False");
    EXPECT_EQ(bar->GetProperty("LaserOnOffButtonEnabled"), "False");
    bar->SetProperty("ActiveMouseCursor", "3");
    EXPECT_TRUE(control(vvb_MouseModeZoomIn)->isChecked());
    EXPECT_FALSE(control(vvb_MouseModePointer)->isChecked());
    EXPECT_EQ(bar->GetProperty("ActiveMouseCursor"), "3");
    bar->SetProperty("HourglassCursor", "True");
    EXPECT_EQ(bar->cursor().shape(), Qt::WaitCursor);
    bar->SetProperty("HourglassCursor", "False");
    bar->SetProperty("ProgressCursor", "True");
    EXPECT_EQ(bar->cursor().shape(), Qt::BusyCursor);
    EXPECT_EQ(errors->count(), 0);
    EXPECT_EQ(clicks->count(), 0); // setting state is not a click
}

TEST_F(ViewButtons, ClicksReportTheButtonNumber)
{
    control(vvb_ContinuousAcquire)->click(); // stays released until the page says "Live"
    EXPECT_FALSE(control(vvb_ContinuousAcquire)->isChecked());
    control(vvb_Acquire)->click();
    control(vvb_MouseModeZoomOut)->click();
    control(vvb_CrosshairOn)->click(); // checks
    control(vvb_CrosshairOn)->click(); // unchecks
    control(vvb_LaserOn)->click();
    control(vvb_LaserOn)->click();
    control(vvb_Open)->click();
    const QList<int> expected = {vvb_ContinuousAcquire, vvb_Acquire, vvb_MouseModeZoomOut, vvb_CrosshairOn,
                                 vvb_CrosshairOff,      vvb_LaserOn, vvb_LaserOff,         vvb_Open};
    ASSERT_EQ(clicks->count(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        EXPECT_EQ(clicks->at(i).at(0).toInt(), expected[i]);
    EXPECT_TRUE(control(vvb_MouseModeZoomOut)->isChecked());
    EXPECT_EQ(bar->GetProperty("ActiveMouseCursor"), "4");
}

TEST(ViewButtonsLanguage, ToolTipsFollowTheLanguage)
{
    qputenv("TORVIK_LANG", "kn");
    NXRViewButtons japanese;
    qputenv("TORVIK_LANG", "eg");
    NXRViewButtons english;
    qunsetenv("TORVIK_LANG");
    EXPECT_EQ(japanese.buttonControl(vvb_Open)->toolTip(), QString::fromUtf8("画像を開く"));
    EXPECT_EQ(english.buttonControl(vvb_Open)->toolTip(), "Open an image");
    EXPECT_FALSE(english.buttonControl(vvb_MouseModePan)->icon().isNull());
}

TEST(Registry, TheControlsAreCreatableByName)
{
    for (const char* name : {"NXRViewButtons", "NexaroControls.NXRStatusBar", "NXRImageDisplay"}) {
        std::unique_ptr<QObject> object(nxr::ClassRegistry::instance().create(QString::fromLatin1(name)));
        ASSERT_TRUE(object) << name;
        EXPECT_TRUE(object->isWidgetType());
    }
}

} // namespace
