#pragma once
// The controller the display tests talk to: the simulator (end-to-end test) or a folder stand-in
// (display test without the network). The test links one of SimController.cpp / FakeController.cpp.

#include <QByteArray>
#include <QString>

#include <memory>

class NXRImageDisplay;

namespace nxr::testing {

class TestController
{
public:
    virtual ~TestController() = default;
    // Starts it; false with the reason in *why.
    virtual bool start(QString* why) = 0;
    // Points a display at it (ports or the stand-in's files).
    virtual void attach(NXRImageDisplay& display) = 0;
    virtual QString host() const = 0;
    virtual QString user() const = 0;
    virtual QString password() const = 0;
    virtual bool writeFile(const QString& controllerPath, const QByteArray& data) = 0;
    // The file that holds a controller path.
    virtual QString localPathOf(const QString& controllerPath) const = 0;
    // The camera takes a new picture into controllerPath; returns the path written.
    virtual QString snap(int width, int height, bool colour, const QString& controllerPath) = 0;
};

std::unique_ptr<TestController> makeTestController();

} // namespace nxr::testing
