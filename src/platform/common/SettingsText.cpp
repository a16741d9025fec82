#include "platform/common/SettingsText.h"

#include <algorithm>
#include <cctype>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");

bool isLineEnd(char character)
{
    return character == '\n' || character == '\r';
}

bool isComment(QByteArrayView line)
{
    return line.startsWith(';') || line.startsWith('#');
}

/// Behind the line's end. A line goes on after one that ends within quotes or with a backslash.
/// None when the quotes are never closed.
std::optional<qsizetype> lineEnd(QByteArrayView text, qsizetype begin)
{
    bool isInQuotes = false;
    bool isInComment = isComment(text.sliced(begin).trimmed());
    for (auto i = begin; i < text.size(); ++i) {
        const bool isPair = text.sliced(i).startsWith("\r\n");
        if (isLineEnd(text[i]) && !isInQuotes)
            return i + (isPair ? 2 : 1);
        if (isInComment)
            continue;
        if (text[i] == '\\')
            i += text.sliced(i + 1).startsWith("\r\n") ? 2 : 1;
        else if (text[i] == '"')
            isInQuotes = !isInQuotes;
        else if (text[i] == ';' && !isInQuotes)
            isInComment = true;
    }
    return isInQuotes ? std::nullopt : std::optional(text.size());
}

/// Where the value ends: at a comment, or with the line.
qsizetype valueEnd(QByteArrayView text, qsizetype begin, qsizetype end)
{
    bool isInQuotes = false;
    auto i = begin;
    for (; i < end && (isInQuotes || text[i] != ';'); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            isInQuotes = !isInQuotes;
    }
    i = std::min(i, end);
    while (i > begin && isspace(static_cast<unsigned char>(text[i - 1])) != 0)
        --i;
    return i;
}

/// The character of the escape sequence that begins at `i`, behind its backslash. Moves `i` to the
/// sequence's last character. None for a line that goes on.
std::optional<QChar> escapedCharacter(QStringView text, qsizetype& i)
{
    static constexpr QStringView letters = u"abfnrtv";
    static constexpr QStringView controls = u"\a\b\f\n\r\t\v";
    if (const auto letter = letters.indexOf(text[i]); letter >= 0)
        return controls[letter];
    const int base = text[i] == u'x' ? 16 : 8;
    auto end = base == 16 ? i + 1 : i;
    const auto isDigit = [base](QChar character) {
        const auto letter = character.toLatin1();
        return base == 16 ? isxdigit(letter) != 0 : letter >= '0' && letter <= '7';
    };
    const auto begin = end;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    if (end > begin) {
        i = end - 1;
        return QChar(static_cast<char16_t>(text.sliced(begin, end - begin).toUInt(nullptr, base)));
    }
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
        ++i;
    if (text[i] == u'\n' || text[i] == u'\r')
        return std::nullopt;
    return text[i];
}

/// None for a list and for QSettings' notations of other types.
std::optional<QString> unescaped(QByteArrayView raw)
{
    const auto text = QString::fromUtf8(raw);
    QString result;
    bool isInQuotes = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size()) {
            if (const auto character = escapedCharacter(text, ++i))
                result += *character;
        } else if (text[i] == u'"') {
            isInQuotes = !isInQuotes;
        } else if (text[i] == u',' && !isInQuotes) {
            return std::nullopt;
        } else {
            result += text[i];
        }
    }
    if (result.startsWith(u"@@"))
        return result.sliced(1);
    if (result.startsWith(u'@') && result.endsWith(u')'))
        return std::nullopt;
    return result;
}

QByteArray escaped(const QString& value)
{
    QString result = value.startsWith(u'@') ? u"@"_s : QString();
    bool isAfterCode = false; // a digit would be taken for one of the code
    for (const auto character : value) {
        const bool isDigit = isAfterCode && isxdigit(character.toLatin1()) != 0;
        isAfterCode = character < u' ' || isDigit;
        if (isAfterCode)
            result += u"\\x"_s + QString::number(character.unicode(), 16);
        else if (character == u'"' || character == u'\\')
            result += u'\\' + QString(character);
        else
            result += character;
    }
    const bool needsQuotes =
        result.trimmed() != result || std::ranges::any_of(result, [](QChar character) {
            return QStringView(u";,=").contains(character);
        });
    return (needsQuotes ? u'"' + result + u'"' : result).toUtf8();
}

} // namespace

std::optional<SettingsText> SettingsText::parse(const QByteArray& bytes)
{
    SettingsText text;
    text.m_bytes = bytes;
    if (!text.readLines() || !text.m_hasSettings)
        return std::nullopt;
    return text;
}

bool SettingsText::readLines()
{
    m_entries.clear();
    m_isTopLevel = true;
    m_topLevelEnd = -1;
    if (m_bytes.contains('\0'))
        return false;
    qsizetype begin = m_bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    while (begin < m_bytes.size()) {
        const auto end = lineEnd(m_bytes, begin);
        if (!end || !readLine(begin, *end))
            return false;
        begin = *end;
    }
    return true;
}

bool SettingsText::readLine(qsizetype begin, qsizetype end)
{
    const auto line = QByteArrayView(m_bytes).sliced(begin, end - begin).trimmed();
    if (line.isEmpty() || isComment(line))
        return true;
    const auto mark = line.startsWith('[') ? line.indexOf(']') : line.indexOf('=');
    if (mark <= 0)
        return false;
    m_hasSettings = true;
    if (line.startsWith('[')) {
        const auto section = line.sliced(1, mark - 1).trimmed().toByteArray();
        m_isTopLevel = section.compare("general", Qt::CaseInsensitive) == 0;
    } else if (m_isTopLevel) {
        const auto equals = line.data() - m_bytes.constData() + mark;
        Entry entry{begin, equals + 1, 0, end, {}};
        entry.valueEnd = valueEnd(m_bytes, entry.value, end);
        entry.string = unescaped(rawOf(entry).trimmed());
        m_entries.insert(QString::fromUtf8(line.first(mark).trimmed()), entry);
    }
    if (m_isTopLevel)
        m_topLevelEnd = end;
    return true;
}

QByteArrayView SettingsText::rawOf(const Entry& entry) const
{
    return QByteArrayView(m_bytes).sliced(entry.value, entry.valueEnd - entry.value);
}

bool SettingsText::containsKeysOf(const SettingsText& other) const
{
    return std::ranges::all_of(
        other.m_entries.keys(), [this](const QString& key) { return contains(key); });
}

std::optional<QByteArray> SettingsText::rawValue(const QString& key) const
{
    const auto entry = m_entries.constFind(key);
    return entry == m_entries.cend() ? std::nullopt : std::optional(rawOf(*entry).toByteArray());
}

std::optional<QString> SettingsText::string(const QString& key) const
{
    const auto entry = m_entries.constFind(key);
    return entry == m_entries.cend() ? std::nullopt : entry->string;
}

void SettingsText::set(const QString& key, const std::optional<QString>& value)
{
    if (!m_bytes.isEmpty() && !isLineEnd(m_bytes.back())) {
        m_bytes += '\n';
        readLines();
    }
    if (!value) {
        // A key may stand in several lines; the last one counts.
        for (auto entry = m_entries.constFind(key); entry != m_entries.cend();
             entry = m_entries.constFind(key)) {
            m_bytes.remove(entry->line, entry->lineEnd - entry->line);
            readLines();
        }
        return;
    }
    if (const auto entry = m_entries.constFind(key); entry != m_entries.cend()) {
        m_bytes.replace(entry->value, entry->valueEnd - entry->value, escaped(*value));
    } else {
        auto line = key.toUtf8() + '=' + escaped(*value) + '\n';
        if (m_topLevelEnd < 0) {
            m_topLevelEnd = m_bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
            line.prepend("[General]\n");
        }
        m_bytes.insert(m_topLevelEnd, line);
    }
    readLines();
}
