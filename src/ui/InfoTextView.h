#pragma once

#include <QTextEdit>

/// A text view that shows what it is given and nothing else: whatever the text refers to
/// (images, style sheets, other documents) is neither fetched nor read from files.
class InfoTextView : public QTextEdit {
    Q_OBJECT

public:
    explicit InfoTextView(QWidget* parent = nullptr);

    /// Appends the notes, HTML of which no more than 16 KiB are read, and tables as their texts.
    /// Texts of others come here: they are not laid out before the next `setText()`.
    void appendNotes(const QString& html);
    /// Replaces all with this plain text, none of whose predecessor's looks remain.
    void setText(const QString& text);

    QVariant loadResource(int type, const QUrl& name) override;
};
