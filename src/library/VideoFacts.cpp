#include "library/VideoFacts.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

QString VideoFacts::ratio() const
{
    const auto divisor = std::max<qint64>(1, std::gcd(width, height));
    return u"%1:%2"_s.arg(width / divisor).arg(height / divisor);
}
