#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/ColorQuantizer.h"
#include "imagedisplay/loading/ImageDecoding.h"
#include "imagedisplay/loading/LocalImagePath.h"

#include "frame/Conversions.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

using nxr::ImageFile;
using nxr::ImageFileFormat;

namespace {

QImage greyRamp(int w, int h)
{
    QImage img(w, h, QImage::Format_Grayscale8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.scanLine(y)[x] = uchar((x * 7 + y * 3) & 255);
    return img;
}

// Smooth colour content with every channel varying: far more than 256 colours.
QImage colourField(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.setPixel(x, y, qRgb(x * 255 / w, y * 255 / h, (x + y) * 255 / (w + h)));
    return img;
}

double meanChannelError(const QImage& a, const QImage& b)
{
    const QImage ra = a.convertToFormat(QImage::Format_RGB32), rb = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int y = 0; y < ra.height(); ++y)
        for (int x = 0; x < ra.width(); ++x) {
            const QRgb p = ra.pixel(x, y), q = rb.pixel(x, y);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * ra.width() * ra.height());
}

bool samePixels(const QImage& a, const QImage& b)
{
    if (a.size() != b.size() || a.format() != b.format())
        return false;
    const size_t rowBytes = size_t(a.width()) * size_t(a.depth()) / 8;
    for (int y = 0; y < a.height(); ++y)
        if (memcmp(a.constScanLine(y), b.constScanLine(y), rowBytes) != 0)
            return false;
    return true;
}

QString failureOf(const QString& path)
{
    try {
        ImageFile::read(path);
    } catch (const nxr::Failure& f) {
        return f.description();
    }
    return QString();
}

void writeBytes(const QString& path, const QByteArray& data)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(data);
}

class ImageFileTest : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }
};

TEST_F(ImageFileTest, RoundTripPerFormatKeepsGreyGreyAndThePixels)
{
    // Lossless formats give the pixels back; JPEG stays close. GIF of many colours: see below.
    const QImage grey = greyRamp(301, 203), colour = colourField(301, 203);
    for (auto [format, greyError, colourError] : {std::tuple{ImageFileFormat::Png, 0.0, 0.0},
                                                  {ImageFileFormat::Bmp, 0.0, 0.0},
                                                  {ImageFileFormat::Gif, 0.0, -1.0},
                                                  {ImageFileFormat::Jpeg, 4.0, 2.0}}) {
        const QString ext = ImageFile::extensionOf(format);
        SCOPED_TRACE(ext.toStdString());
        for (auto [original, error] : {std::pair{grey, greyError}, {colour, colourError}}) {
            if (error < 0)
                continue;
            ImageFile::write(original, path("x" + ext), format);
            const QImage back = ImageFile::read(path("x" + ext));
            EXPECT_EQ(back.format(), original.format());
            if (error == 0)
                EXPECT_TRUE(samePixels(back, original));
            else
                EXPECT_LT(meanChannelError(back, original), error);
        }
    }
    // Content decides the format, not the name.
    ImageFile::write(grey, path("image.JPG"), ImageFileFormat::Png);
    EXPECT_TRUE(samePixels(ImageFile::read(path("image.JPG")), grey));
}

TEST_F(ImageFileTest, GifOfAFewColoursIsExactAndOfManyColoursIsQuantisedClosely)
{
    QImage few(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            few.setPixel(x, y, qRgb((x % 16) * 17, (y % 16) * 17, 200)); // exactly 256 colours
    ImageFile::write(few, path("few.gif"), ImageFileFormat::Gif);
    EXPECT_TRUE(samePixels(ImageFile::read(path("few.gif")), few));

    const QImage many = colourField(400, 300);
    ImageFile::write(many, path("many.gif"), ImageFileFormat::Gif);
    const QImage back = ImageFile::read(path("many.gif"));
    ASSERT_EQ(back.size(), many.size());
    QSet<QRgb> colours;
    for (int y = 0; y < back.height(); ++y)
        for (int x = 0; x < back.width(); ++x)
            colours.insert(back.pixel(x, y));
    EXPECT_LE(colours.size(), 256);
    EXPECT_GT(colours.size(), 128); // the palette is actually used
    EXPECT_LT(meanChannelError(back, many), 5.0);
}

TEST_F(ImageFileTest, QuantiserSeparatesDistinctClustersAndHonoursTheLimit)
{
    // Two clusters of nearby colours, 900 colours in all, reduced to 2: one entry per cluster.
    QImage img(60, 30, QImage::Format_RGB32);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 60; ++x)
            img.setPixel(x, y,
                         x < 30 ? qRgb(10 + x % 6, 20 + y % 5, 30) : qRgb(220 + x % 6, 200, 180 + y % 5));
    const QImage two = nxr::ColorQuantizer::toIndexed(img, 2);
    ASSERT_EQ(two.format(), QImage::Format_Indexed8);
    ASSERT_EQ(two.colorCount(), 2);
    EXPECT_NE(two.pixelIndex(0, 0), two.pixelIndex(59, 29));
    EXPECT_EQ(two.pixelIndex(0, 0), two.pixelIndex(29, 29));
    EXPECT_LT(meanChannelError(two, img), 3.0);
}

TEST_F(ImageFileTest, SixteenBitGreyAndTransparencySurvivePng)
{
    QImage deep(40, 30, QImage::Format_Grayscale16);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            reinterpret_cast<quint16*>(deep.scanLine(y))[x] = quint16(x * 1500 + y * 7);
    ImageFile::write(deep, path("deep.png"), ImageFileFormat::Png);
    EXPECT_TRUE(samePixels(ImageFile::read(path("deep.png")), deep));
    // Formats without 16 bits get 8-bit grey.
    ImageFile::write(deep, path("deep.bmp"), ImageFileFormat::Bmp);
    EXPECT_EQ(ImageFile::read(path("deep.bmp")).format(), QImage::Format_Grayscale8);

    QImage alpha(20, 10, QImage::Format_ARGB32);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x)
            alpha.setPixel(x, y, qRgba(x * 10, y * 20, 99, x * 12));
    ImageFile::write(alpha, path("alpha.png"), ImageFileFormat::Png);
    EXPECT_TRUE(samePixels(ImageFile::read(path("alpha.png")), alpha));
}

// Cut files of every format: the seeds' test below.
TEST_F(ImageFileTest, CorruptAndNonImageFilesGiveClearReasons)
{
    const QImage colour = colourField(200, 150);
    // Bytes after the end of a complete JPEG (some cameras append their own data) are harmless.
    writeBytes(path("tail.jpg"), ImageFile::encode(colour, ImageFileFormat::Jpeg) + QByteArray(300, '\x55'));
    EXPECT_EQ(failureOf(path("tail.jpg")), "");
    {
        // Progressive JPEG: several scans.
        QImageWriter progressive(path("progressive.jpg"), "jpeg");
        progressive.setProgressiveScanWrite(true);
        ASSERT_TRUE(progressive.write(colour));
    }
    EXPECT_EQ(failureOf(path("progressive.jpg")), "");
    QFile cut(path("progressive.jpg"));
    ASSERT_TRUE(cut.open(QIODevice::ReadWrite));
    cut.resize(cut.size() * 2 / 3);
    cut.close();
    EXPECT_FALSE(failureOf(path("progressive.jpg")).isEmpty());
    writeBytes(path("page.JPG"), "<HTML><BODY>404 Not Found</BODY></HTML>\r\n");
    EXPECT_EQ(failureOf(path("page.JPG")), "not an image file");
    writeBytes(path("empty.PNG"), "");
    EXPECT_EQ(failureOf(path("empty.PNG")), "file " + path("empty.PNG") + " is empty");
    EXPECT_EQ(failureOf(path("missing.PNG")), "file " + path("missing.PNG") + " does not exist");
    // A PNG header followed by garbage.
    QByteArray broken = ImageFile::encode(colour, ImageFileFormat::Png);
    for (qsizetype i = 100; i < broken.size() - 20; i += 7)
        broken[i] = char(broken[i] ^ 0x5A);
    writeBytes(path("broken.png"), broken);
    EXPECT_TRUE(failureOf(path("broken.png")).startsWith("cannot decode PNG data"));
}

// The image fuzzer's seeds: tiny files of each format. Each decodes, in the format its content
// calls for, and every shorter cut of it is refused.
TEST(ImageDecodingTest, EveryCutOfAWholeFileIsRefused)
{
    const QDir seeds(QStringLiteral(NXR_FUZZ_CORPUS "/image"));
    const QStringList names = seeds.entryList(QDir::Files);
    ASSERT_GE(names.size(), 4);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(seeds.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray data = file.readAll();
        const QImage image = nxr::decodeImage(data);
        const bool grey = name.startsWith(QLatin1String("grey")) || name.startsWith(QLatin1String("palette"));
        EXPECT_EQ(image.format(), grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
        for (qsizetype n = 0; n < data.size(); ++n)
            EXPECT_THROW(nxr::decodeImage(data.left(n)), nxr::Failure) << "first " << n << " bytes";
    }
}

TEST(ImageFileFormatTest, FormatFollowsTheControllerPathsExtensionWithJpegByDefault)
{
    for (auto [path, format] : {std::pair{"MC:\\VISION\\A.png", ImageFileFormat::Png},
                                {"MC:\\V\\A.Gif", ImageFileFormat::Gif},
                                {"MC:\\V\\A.BMP", ImageFileFormat::Bmp},
                                {"MC:\\V\\A.jpg", ImageFileFormat::Jpeg},
                                {"MC:\\V\\A", ImageFileFormat::Jpeg},
                                {"MC:\\V\\A.TIF", ImageFileFormat::Jpeg}})
        EXPECT_EQ(ImageFile::formatForPath(path), format) << path;
}

TEST(LocalImagePathTest, StorageFolderPlusNormalisedSubfolderPlusImageAndExtension)
{
    using nxr::LocalImagePath::forControllerPath;
    using nxr::LocalImagePath::subfolder;
    EXPECT_EQ(subfolder("MC:\\VISION\\LOG\\A.JPG"), "MC:\\VISION\\LOG\\");
    EXPECT_EQ(subfolder("MC:A.JPG"), "MC:");
    EXPECT_EQ(subfolder("A.JPG"), "");
    EXPECT_EQ(forControllerPath("/tmp/TORVIK", "MC:\\Vision\\snap.jpg"), "/tmp/TORVIK/MC/VISION/image.JPG");
    EXPECT_EQ(forControllerPath("/tmp/TORVIK", "MC:\\v1.2\\cam\\x.gif"), "/tmp/TORVIK/MC/V12/CAM/image.GIF");
    EXPECT_EQ(forControllerPath("/tmp/TORVIK", "MC:\\VISION\\SNAP"), "/tmp/TORVIK/MC/VISION/image.PNG");
    EXPECT_EQ(forControllerPath("/tmp/TORVIK", "snap.bmp"), "/tmp/TORVIK/image.BMP");
    // Pieces that would climb out of the storage folder vanish.
    EXPECT_EQ(forControllerPath("/tmp/TORVIK", "MC:\\..\\..\\etc\\a/b\\x.png"),
              "/tmp/TORVIK/MC/ETC/AB/image.PNG");
}

} // namespace
