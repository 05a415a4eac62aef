// The image display before it has shown any image: it claims no zoom the operator never chose.

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRStatusBar.h"

#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

TEST(EmptyDisplay, ShowsTheNeutralZoomUntilAnImageArrives)
{
    // Created and used before it is laid out, created and shown, and shown at a tiny size.
    const struct
    {
        const char* name;
        bool show;
        QSize size;
    } cases[] = {{"never shown", false, QSize(800, 600)},
                 {"shown", true, QSize(800, 600)},
                 {"shown tiny", true, QSize(40, 30)}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto display = std::make_unique<NXRImageDisplay>();
        display->resize(c.size);
        if (c.show) {
            display->show();
            ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(display->GetProperty("Zoom"), "100");
        EXPECT_EQ(display->Zoom(), 100.0f);
        EXPECT_NE(display->statusBar()->zoomLabelText(), "1%");
        EXPECT_TRUE(display->statusBar()->zoomLabelText().isEmpty() ||
                    display->statusBar()->zoomLabelText() == "100%")
            << display->statusBar()->zoomLabelText().toStdString();
    }
}

} // namespace
