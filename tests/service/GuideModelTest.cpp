#include "service/GuideModel.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QTest>
#include <QtEndian>

#include <set>

using namespace Qt::StringLiterals;

namespace {

QByteArray file(const QColor& colour, const QSize& size = {2, 2}, const char* format = "PNG")
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray file;
    QBuffer buffer(&file);
    image.save(&buffer, format);
    return file;
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
        const auto red = base64(file(Qt::red));
        const auto green = base64(file(Qt::green));

        const auto guide = model({red, green.left(20), green, red}, {a, a, b});
        QCOMPARE(pairs(guide.leftPanel()), (std::multiset{redA, limeB}));
        QVERIFY(guide.newFeature().empty());
        QVERIFY(!guide.response());

        const GuideModel both({1, {}, {{red}, {a}, {}, {}, {}, {}, {green}, {b}}});
        QCOMPARE(pairs(both.leftPanel()), std::multiset{redA});
        QCOMPARE(pairs(both.newFeature()), std::multiset{limeB});

        const auto equal = model({red, red}, {a, a});
        QCOMPARE(pairs(equal.leftPanel()), (std::multiset{redA, redA}));
    }

    void picture_isReadBehindItsLastComma_data()
    {
        QTest::addColumn<QString>("text");
        const auto data = base64(file(Qt::red));
        QTest::newRow("plain") << data;
        QTest::newRow("a data URL") << u"data:image/png;base64,"_s + data;
        QTest::newRow("two commas") << u"a,b,"_s + data;
        QTest::newRow("commas at its end") << u"a,"_s + data + u",,"_s;
        QTest::newRow("a JPEG") << base64(file(QColor(254, 0, 0), {2, 2}, "JPG"));
        QTest::newRow("a GIF") << u"R0lGODdhAQABAIAAAP8AAAAAACwAAAAAAQABAAACAkQBADs="_s;
    }

    void picture_isReadBehindItsLastComma()
    {
        QFETCH(QString, text);

        const auto guide = model({text}, {a});

        QCOMPARE(guide.leftPanel().size(), std::size_t{1});
        QVERIFY(guide.leftPanel().begin()->first->pixelColor(0, 0).red() > 250);
    }

    void unusablePair_isLeftOutAlone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("link");
        const auto png = file(Qt::red).leftJustified(120, 'x');
        const auto data = base64(png);
        const auto row = [](const char* name, const QString& text, const QString& link = a) {
            QTest::newRow(name) << text << link;
        };
        row("empty", {});
        row("commas", u",,,"_s);
        row("a line break", QString(data).insert(8, u'\n'));
        row("hyphens at its end", data + u"----"_s);
        row("no picture", base64("<html></html>"));
        row("damaged", base64(QByteArray(png).replace(png.indexOf("IDAT"), 8, "x")));
        row("a damaged JPEG", base64(QByteArray::fromHex("ffd8ffe000104a46494600") + "xxxx"));
        row("a JPEG of 100 layers",
            base64(file(Qt::red, {2, 2}, "JPG") + QByteArray("\xff\xda").repeated(100)));
        row("a fourth kind", base64(file(Qt::red, {2, 2}, "PPM")));
        row("an empty link", data, {});
        row("a link that is none", data, u"http://a b:c/"_s);
    }

    void unusablePair_isLeftOutAlone()
    {
        QFETCH(QString, text);
        QFETCH(QString, link);
        QTest::failOnWarning(QRegularExpression(u".*"_s));

        const auto guide = model({text, base64(file(Qt::red))}, {link, a});

        QCOMPARE(pairs(guide.leftPanel()), std::multiset{redA});
    }

    void memoryOfAllPictures_isBounded_data()
    {
        QTest::addColumn<QByteArray>("large");
        QTest::addColumn<QString>("link");
        QTest::addColumn<std::size_t>("count");        // of three of these and a small one
        const auto half = file(Qt::red, {4096, 2048}); // 32 MiB as pixels, little as a file
        QTest::newRow("right") << half << a << 2UL;
        QTest::newRow("as JPEG") << file(Qt::red, {4096, 2048}, "JPG") << a << 2UL;
        QTest::newRow("damaged") << half.chopped(30) << a << 0UL;
        QTest::newRow("without a link") << half << QString() << 1UL;
        QTest::newRow("larger than all") << file(Qt::red, {4097, 4096}) << a << 1UL;
    }

    void memoryOfAllPictures_isBounded()
    {
        QFETCH(QByteArray, large);
        QFETCH(QString, link);
        const std::vector<QString> links{link, link, link, a};
        const auto text = base64(large);

        const auto guide = model({text, text, text, base64(file(Qt::red))}, links);

        QTEST(guide.leftPanel().size(), "count");
    }
};

QTEST_GUILESS_MAIN(GuideModelTest)
#include "GuideModelTest.moc"
