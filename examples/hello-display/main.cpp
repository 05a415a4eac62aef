// hello-display: the smallest program on NexaroControls. It creates an NXRInfo and an image
// display, prints the library's controller software version and the display's size, and with
// --show opens the display until its window is closed.
#include <frame/ClassRegistry.h>
#include <frame/NXRInfo.h>

#include <QApplication>
#include <QWidget>

#include <cstdio>
#include <cstring>
#include <memory>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);

    NXRInfo info;
    std::printf("NexaroControls for controller software %s\n", info.NXRBuildID().toUtf8().constData());

    // Controls are created by class name, as pages do (or directly, with the control's header).
    std::unique_ptr<QWidget> display(
        qobject_cast<QWidget*>(nxr::ClassRegistry::instance().create(QStringLiteral("NXRImageDisplay"))));
    if (!display) {
        std::fprintf(stderr, "hello-display: the library has no NXRImageDisplay\n");
        return 1;
    }
    display->resize(480, 360);
    display->setProperty("Caption", QStringLiteral("Hello from NexaroControls"));
    std::printf("%s %dx%d, caption \"%s\"\n", display->metaObject()->className(), display->width(),
                display->height(), display->property("Caption").toString().toUtf8().constData());

    if (argc > 1 && std::strcmp(argv[1], "--show") == 0) {
        display->show();
        return QApplication::exec();
    }
    return 0;
}
