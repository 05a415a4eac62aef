#include "TestController.h"

#include "ControllerSimulator.h"

#include "imagedisplay/NXRImageDisplay.h"

namespace nxr::testing {
namespace {

class SimController : public TestController
{
public:
    bool start(QString* why) override
    {
        const bool ok = m_sim.start();
        *why = m_sim.errorText();
        return ok;
    }
    void attach(NXRImageDisplay& display) override
    {
        display.SetProperty(QStringLiteral("FTPPortNo"), QString::number(m_sim.ftpPort()));
        display.SetProperty(QStringLiteral("HTTPPortNo"), QString::number(m_sim.httpPort()));
    }
    QString host() const override { return m_sim.host(); }
    QString user() const override { return m_sim.user(); }
    QString password() const override { return m_sim.password(); }
    bool writeFile(const QString& path, const QByteArray& data) override
    {
        return m_sim.writeFile(path, data);
    }
    QString localPathOf(const QString& path) const override { return m_sim.localPathOf(path); }
    QString snap(int width, int height, bool colour, const QString& path) override
    {
        return m_sim.snap(width, height, colour, path);
    }

private:
    nxr::test::ControllerSimulator m_sim;
};

} // namespace

std::unique_ptr<TestController> makeTestController()
{
    return std::make_unique<SimController>();
}

} // namespace nxr::testing
