#pragma once

#include <QUiLoader>

#include <memory>

class QIODevice;

/// Reads interface files (Qt Designer's) that use the classes of this folder.
class UiLoader : public QUiLoader {
public:
    /// The window or widget that is described, laid out at its first size and not shown, with its
    /// buttons woken (`awakeFromNib()`); null, with an error, when
    /// the text describes none.
    static std::unique_ptr<QWidget> loadInterface(QIODevice& device, QString* error = nullptr);

protected:
    UiLoader() = default;
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;
};
