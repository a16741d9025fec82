#include "service/GuideModel.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QTest>

#include <set>

using namespace Qt::StringLiterals;

namespace {

QByteArray file(
    const char* format = "PNG", const QSize& size = {2, 2}, Qt::GlobalColor colour = Qt::red)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer file;
    image.save(&file, format);
    return file.data();
}

QString base64(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toBase64());
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

const auto a = u"https://example.com/a"_s;
const auto b = u"https://example.com/b"_s;
const auto redA = u"#ff0000 "_s + a;
const auto limeB = u"#00ff00 "_s + b;

} // namespace

class GuideModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pictures_goWithTheLinkOfTheirPlace()
    {
        const auto red = base64(file());
        const auto green = base64(file("PNG", {2, 2}, Qt::green));

        const std::vector<QString> pictures{red, green.left(20), green, red, red};
        const GuideModel guide({1, {}, {pictures, {a, a, b, a}, {}, {}, {}, {}, {green}, {b}}});

        QCOMPARE(pairs(guide.leftPanel()), (std::multiset{redA, redA, limeB}));
        QCOMPARE(pairs(guide.newFeature()), std::multiset{limeB});
    }

    void picture_isReadBehindItsLastComma()
    {
        const auto png = base64(file());
        const auto gif = u"R0lGODdhAQABAIAAAP8AAAAAACwAAAAAAQABAAACAkQBADs="_s;
        const std::vector texts{
            u"data:image/png;base64,"_s + png, u"a,b,"_s + png + u",,"_s, base64(file("JPG")), gif};
        QCOMPARE(model(texts, {a, a, b, b}).leftPanel().size(), texts.size());
    }

    void unusablePair_isLeftOutAlone()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        const auto png = file().leftJustified(120, 'x');
        const auto data = base64(png);
        const auto damaged = QByteArray(png).replace(png.indexOf("IDAT"), 8, "x");
        const auto damagedJpeg = QByteArray::fromHex("ffd8ffe000104a46494600") + "xxxx";
        const auto manyLayers = file("JPG") + QByteArray("\xff\xda").repeated(100);
        for (const auto& [text, link] : {std::pair(u",,,"_s, a),
                 std::pair(QString(data).insert(8, u'\n'), a),
                 std::pair(data + u"----"_s, a),
                 std::pair(base64(damaged), a),
                 std::pair(base64(damagedJpeg), a),
                 std::pair(base64(manyLayers), a),
                 std::pair(base64(file("PPM")), a),
                 std::pair(data, u"http://a b:c/"_s)}) {
            const auto guide = model({text, base64(file())}, {link, a});
            QVERIFY2(pairs(guide.leftPanel()) == std::multiset{redA}, qPrintable(text.left(40)));
        }
    }

    void memoryOfAllPictures_isBounded()
    {
        // Of three large pictures and a small one, so many are shown. The large ones are 32 MiB as
        // pixels, and little as files.
        const auto count = [](const QByteArray& large, const QString& link = a) {
            const auto text = base64(large);
            return model({text, text, text, base64(file())}, {link, link, link, a})
                .leftPanel()
                .size();
        };
        const QSize half(4096, 2048);
        QCOMPARE(count(file("PNG", half)), 2UL);
        QCOMPARE(count(file("JPG", half)), 2UL);
        QCOMPARE(count(file("PNG", half).chopped(30)), 0UL); // damaged
        QCOMPARE(count(file("PNG", half), {}), 1UL);
        QCOMPARE(count(file("PNG", {4097, 4096})), 1UL); // larger than all
    }
};

QTEST_GUILESS_MAIN(GuideModelTest)
#include "GuideModelTest.moc"
