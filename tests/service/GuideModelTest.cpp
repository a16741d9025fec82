#include "service/GuideModel.h"

#include "support/ProcessMemory.h"

#include <QBuffer>
#include <QTest>
#include <QtEndian>

#include <set>
#include <zlib.h>

namespace {

/// A PNG of one colour as base64.
QString picture(const QColor& colour, const QSize& size = {2, 2})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return QString::fromLatin1(file.toBase64());
}

/// A PNG whose head claims this size, and is otherwise right.
QString claim(quint32 width, quint32 height)
{
    auto file = QByteArray::fromBase64(picture(Qt::red).toLatin1());
    qToBigEndian(width, file.data() + 16);
    qToBigEndian(height, file.data() + 20);
    const auto checksum = crc32(0, reinterpret_cast<const Bytef*>(file.constData()) + 12, 17);
    qToBigEndian(static_cast<quint32>(checksum), file.data() + 29);
    return QString::fromLatin1(file.toBase64());
}

GuideModel model(const std::vector<QString>& pictures, const std::vector<QString>& links)
{
    return GuideModel({1, {}, {pictures, links, pictures, links, pictures, links, {}, {}}});
}

/// "colour address", sorted.
std::multiset<QString> pairs(const GuideModel::Links& links)
{
    std::multiset<QString> pairs;
    for (const auto& [image, url] : links)
        pairs.insert(image->pixelColor(0, 0).name() + u' ' + url.toString());
    return pairs;
}

const auto red = QStringLiteral("#ff0000 ");
const auto lime = QStringLiteral("#00ff00 ");
const auto a = QStringLiteral("https://example.com/a");
const auto b = QStringLiteral("https://example.com/b");

} // namespace

class GuideModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pictures_goWithTheLinkOfTheirPlace()
    {
        const auto guide = model(
            {picture(Qt::red), picture(Qt::green).left(20), picture(Qt::green), picture(Qt::blue)},
            {a, a, b});

        QCOMPARE(pairs(guide.leftPanel()), (std::multiset{red + a, lime + b}));
        QVERIFY(guide.newFeature().empty());
        QVERIFY(!guide.response());
        QCOMPARE(guide.guideResponse().data.windowUrl.size(), std::size_t{3});
    }

    void bothLists_areLoaded()
    {
        const GuideModel guide(
            {1, {}, {{picture(Qt::red)}, {a}, {}, {}, {}, {}, {picture(Qt::green)}, {b}}});

        QCOMPARE(pairs(guide.leftPanel()), std::multiset{red + a});
        QCOMPARE(pairs(guide.newFeature()), std::multiset{lime + b});
    }

    void equalPictures_areTwoEntries()
    {
        QCOMPARE(
            model({picture(Qt::red), picture(Qt::red)}, {a, a}).leftPanel().size(), std::size_t{2});
    }

    void dataUrl_isReadBehindItsLastComma_data()
    {
        QTest::addColumn<QString>("text");
        const auto data = picture(Qt::red);
        QTest::newRow("plain") << data;
        QTest::newRow("a data URL") << QStringLiteral("data:image/png;base64,") + data;
        QTest::newRow("two commas") << QStringLiteral("a,b,") + data;
        QTest::newRow("commas at its end") << data + QStringLiteral(",,");
    }

    void dataUrl_isReadBehindItsLastComma()
    {
        QFETCH(QString, text);

        QCOMPARE(pairs(model({text}, {a}).leftPanel()), std::multiset{red + a});
    }

    void unusablePair_isLeftOutAlone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("link");
        const auto data = picture(Qt::red);
        const auto file = QByteArray::fromBase64(data.toLatin1());
        const auto base64 = [](const QByteArray& bytes) {
            return QString::fromLatin1(bytes.toBase64());
        };
        QTest::newRow("empty") << QString() << a;
        QTest::newRow("commas") << QStringLiteral(",,,") << a;
        QTest::newRow("a line break") << QString(data).insert(8, u'\n') << a;
        QTest::newRow("no picture") << base64("<html></html>") << a;
        QTest::newRow("cut off") << base64(file.left(40)) << a;
        QTest::newRow("damaged") << base64(QByteArray(file).replace(
                                        file.indexOf("IDAT") + 4, 4, "xxxx"))
                                 << a;
        QTest::newRow("a damaged JPEG")
            << base64(QByteArray::fromHex("ffd8ffe000104a46494600") + "xxxx") << a;
        QTest::newRow("60,000 pixels square") << claim(60'000, 60'000) << a;
        QTest::newRow("most pixels of all") << claim(0x7fffffff, 0x7fffffff) << a;
        QTest::newRow("a vector format")
            << base64("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"2\" height=\"2\"/>") << a;
        QTest::newRow("an empty link") << data << QString();
        QTest::newRow("a link that is none") << data << QStringLiteral("http://a b:c/");
    }

    void unusablePair_isLeftOutAlone()
    {
        QFETCH(QString, text);
        QFETCH(QString, link);
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));

        QCOMPARE(
            pairs(model({text, picture(Qt::red)}, {link, a}).leftPanel()), std::multiset{red + a});
    }

    /// Neither costs more than its share of memory and time: minutes, where they do.
    void hostilePictures_areRefusedAtOnce()
    {
        const auto cutOff =
            QByteArray::fromBase64(picture(Qt::red, {4096, 4096}).toLatin1()).chopped(30);
        const std::vector<QString> many(500, QString::fromLatin1(cutOff.toBase64()));
        QVERIFY(model(many, std::vector<QString>(500, a)).leftPanel().empty());
    }

    void packedTextInAPicture_isNotUnpacked()
    {
        const auto text =
            QByteArray("zTXtkey\0\0", 9) + qCompress(QByteArray(100'000'000, 'x')).mid(4);
        QByteArray chunk(4, '\0');
        qToBigEndian(static_cast<quint32>(text.size() - 4), chunk.data());
        chunk += text + QByteArray(4, '\0');
        const auto checksum = crc32(
            0, reinterpret_cast<const Bytef*>(text.constData()), static_cast<uInt>(text.size()));
        qToBigEndian(static_cast<quint32>(checksum), chunk.data() + chunk.size() - 4);
        constexpr qsizetype behindTheHead = 33;
        const auto file =
            QByteArray::fromBase64(picture(Qt::red).toLatin1()).insert(behindTheHead, chunk);
        ProcessMemory::forgetPeak();
        const auto memory = ProcessMemory::peak();

        const auto guide = model({QString::fromLatin1(file.toBase64())}, {a});

        QCOMPARE(guide.leftPanel().size(), std::size_t{1});
        QVERIFY(ProcessMemory::peak() - memory < 50);
    }

    void memoryOfAllPictures_isBounded()
    {
        const auto large = picture(Qt::red, {4096, 2048}); // 32 MiB as pixels, little as a file

        QCOMPARE(model({large, large, large, picture(Qt::red)}, {a, a, a, a}).leftPanel().size(),
            std::size_t{2});
        QCOMPARE(model({large, picture(Qt::red)}, {a, a}).leftPanel().size(), std::size_t{2});
    }
};

QTEST_APPLESS_MAIN(GuideModelTest)
#include "GuideModelTest.moc"
