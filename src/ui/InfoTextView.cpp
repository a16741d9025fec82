#include "ui/InfoTextView.h"

#include <QImage>
#include <QRegularExpression>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>

namespace {

QVariant nothing(int type)
{
    if (type != QTextDocument::ImageResource)
        return QByteArray();
    // An image that is null would have the text's layout look for a file of that name.
    QImage dot(1, 1, QImage::Format_ARGB32_Premultiplied);
    dot.fill(Qt::transparent);
    return dot;
}

class DetachedDocument : public QTextDocument {
protected:
    QVariant loadResource(int type, const QUrl& /*name*/) override { return nothing(type); }
};

/// What is left of tables is their texts. One of a few bytes may have billions of cells.
QString withoutTables(QString html)
{
    static const QRegularExpression tags(
        QStringLiteral("</?\\s*(table|tbody|thead|tfoot|tr|td|th|col|colgroup)\\b[^>]*>?"),
        QRegularExpression::CaseInsensitiveOption);
    return html.replace(tags, QStringLiteral(" "));
}

} // namespace

InfoTextView::InfoTextView(QWidget* parent) : QTextEdit(parent)
{
    document()->setDocumentMargin(0); // in line with the labels beside it
}

void InfoTextView::appendNotes(const QString& html)
{
    constexpr qsizetype sizeLimit = 16'384; // beyond, lists in lists take seconds to read
    DetachedDocument notes;
    notes.setUndoRedoEnabled(false);
    notes.setLayoutEnabled(false);
    notes.setHtml(withoutTables(QString::fromUtf8(html.left(sizeLimit).toUtf8().left(sizeLimit))));

    document()->setLayoutEnabled(false);
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertFragment(QTextDocumentFragment(&notes));
}

void InfoTextView::setText(const QString& text)
{
    document()->setPlainText(text);
    document()->setLayoutEnabled(true);
    setTextCursor(QTextCursor(document())); // or it would show the end of a long text
}

QVariant InfoTextView::loadResource(int type, const QUrl& /*name*/)
{
    return nothing(type);
}
