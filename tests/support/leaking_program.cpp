#include <QCoreApplication>
#include <QTimer>

#include <memory>

namespace {

/// Several, because one may still be pointed to from a register.
[[gnu::noinline]] void loseMemory()
{
    for (int i = 0; i < 10; ++i)
        [[maybe_unused]] const auto* lost = std::make_unique<int[]>(100).release();
}

} // namespace

/// Loses memory of its own while the toolkit's loop calls it, as nearly all of our code is called.
/// The sanitizer has to say so, whatever is suppressed of others'.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QTimer::singleShot(0, &application, [] {
        loseMemory();
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
