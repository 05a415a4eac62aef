#include "FakeFiles.h"
#include "TestController.h"

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QTemporaryDir>

namespace nxr::testing {
namespace {

class FakeController : public TestController
{
public:
    bool start(QString* why) override
    {
        *why = m_root.errorString();
        return m_root.isValid();
    }
    void attach(NXRImageDisplay& display) override
    {
        m_files.transferMs = 20; // a transfer waits in the event loop, as the real one does
        display.loading().setFiles(&m_files);
    }
    QString host() const override { return QStringLiteral("robot"); }
    QString user() const override { return QStringLiteral("operator"); }
    QString password() const override { return QStringLiteral("s3cret"); }
    bool writeFile(const QString& path, const QByteArray& data) override
    {
        m_files.put(path, data);
        return true;
    }
    QString localPathOf(const QString& path) const override { return m_files.fileFor(path); }
    QString snap(int width, int height, bool colour, const QString& path) override
    {
        QImage img(width, height, colour ? QImage::Format_RGB32 : QImage::Format_Grayscale8);
        img.fill(QColor::fromHsv((++m_frame * 37) % 360, 200, 200));
        m_files.put(path, ImageFile::encode(img, ImageFileFormat::Jpeg));
        return path;
    }

private:
    QTemporaryDir m_root;
    FakeFiles m_files{m_root.path()};
    int m_frame = 0;
};

} // namespace

std::unique_ptr<TestController> makeTestController()
{
    return std::make_unique<FakeController>();
}

} // namespace nxr::testing
