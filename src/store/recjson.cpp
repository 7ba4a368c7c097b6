#include "recjson.h"

#include <QtCore/QHash>

#include <charconv>
#include <cmath>
#include <cstring>

QString StringPool::intern(QByteArrayView utf8)
{
    if (utf8.size() > kMaxShared)
        return QString::fromUtf8(utf8);
    // A raw-data key borrows the bytes, so a hit allocates nothing.
    auto it = m_pool.constFind(QByteArray::fromRawData(utf8.data(), utf8.size()));
    if (it != m_pool.cend())
        return it.value();
    QString text = QString::fromUtf8(utf8);
    m_pool.insert(utf8.toByteArray(), text);
    return text;
}

QString StringPool::intern(const QString &text)
{
    if (text.size() > kMaxShared)
        return text;
    const QByteArray utf8 = text.toUtf8();
    auto it = m_pool.constFind(utf8);
    if (it != m_pool.cend())
        return it.value();
    m_pool.insert(utf8, text);
    return text;
}

namespace {

void appendString(QByteArray &out, const QString &s)
{
    out.append('"');
    const QByteArray utf8 = s.toUtf8();
    for (char ch : utf8) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
        case '"': out.append("\\\""); break;
        case '\\': out.append("\\\\"); break;
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        case '\b': out.append("\\b"); break;
        case '\f': out.append("\\f"); break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                out.append(buf);
            } else {
                out.append(ch);
            }
        }
    }
    out.append('"');
}

void appendNumber(QByteArray &out, double v)
{
    char buf[64];
    // Shortest text that reads back as the same double, so a reload is equal.
    auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, ec == std::errc() ? ptr - buf : 0);
}

// A strict reader of exactly the JSON grammar (RFC 8259) over UTF-8 bytes.
class Reader
{
public:
    Reader(QByteArrayView text, StringPool *pool)
        : p(text.data())
        , end(text.data() + text.size())
        , pool(pool)
    {}

    std::optional<Rec> record()
    {
        skipSpace();
        if (!eat('{'))
            return std::nullopt;
        Rec r;
        unsigned seen = 0;
        enum : unsigned {
            Id = 1,
            Kind = 2,
            Company = 4,
            Project = 8,
            Parent = 16,
            Created = 32,
            Updated = 64,
            F = 128
        };
        skipSpace();
        if (!eat('}')) {
            for (;;) {
                skipSpace();
                QByteArray keyBytes; // only for a name written with escapes
                QByteArrayView key;
                if (!name(key, keyBytes))
                    return std::nullopt;
                skipSpace();
                if (!eat(':'))
                    return std::nullopt;
                skipSpace();
                auto text = [&](QString &into, unsigned bit, bool share) {
                    seen |= bit;
                    return string(into, share);
                };
                bool ok;
                if (key == "id")
                    ok = text(r.id, Id, false); // unique: pooling would only cost
                else if (key == "kind")
                    ok = text(r.kind, Kind, true);
                else if (key == "company")
                    ok = text(r.company, Company, true);
                else if (key == "project")
                    ok = text(r.project, Project, true);
                else if (key == "parent")
                    ok = text(r.parent, Parent, true);
                else if (key == "created") {
                    seen |= Created;
                    ok = number(r.created);
                } else if (key == "updated") {
                    seen |= Updated;
                    ok = number(r.updated);
                } else if (key == "f") {
                    seen |= F;
                    ok = fields(r.f);
                } else
                    ok = skipValue(0);
                if (!ok)
                    return std::nullopt;
                skipSpace();
                if (eat(','))
                    continue;
                if (eat('}'))
                    break;
                return std::nullopt;
            }
        }
        skipSpace();
        if (p != end || seen != 255)
            return std::nullopt;
        return r;
    }

private:
    const char *p;
    const char *end;
    StringPool *pool;
    QString scratch;

    bool eat(char c)
    {
        if (p < end && *p == c) {
            ++p;
            return true;
        }
        return false;
    }
    void skipSpace()
    {
        while (p < end && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r'))
            ++p;
    }
    bool literal(const char *word)
    {
        const size_t n = std::strlen(word);
        if (size_t(end - p) < n || std::memcmp(p, word, n) != 0)
            return false;
        p += n;
        return true;
    }

    static int hex(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    }
    bool hex4(char16_t &out)
    {
        if (end - p < 4)
            return false;
        unsigned v = 0;
        for (int k = 0; k < 4; ++k) {
            const int h = hex(p[k]);
            if (h < 0)
                return false;
            v = v * 16 + unsigned(h);
        }
        p += 4;
        out = char16_t(v);
        return true;
    }

    // Reads a member name: the raw bytes when written plainly, else decoded
    // into `holder` as UTF-8.
    bool name(QByteArrayView &out, QByteArray &holder)
    {
        const char *save = p;
        if (!eat('"'))
            return false;
        const char *start = p;
        while (p < end && *p != '"' && *p != '\\' && static_cast<unsigned char>(*p) >= 0x20 &&
               static_cast<unsigned char>(*p) < 0x80)
            ++p;
        if (p < end && *p == '"') {
            out = QByteArrayView(start, p - start);
            ++p;
            return true;
        }
        p = save;
        QString decoded;
        if (!string(decoded))
            return false;
        holder = decoded.toUtf8();
        out = holder;
        return true;
    }

    // Reads a JSON string. Plain runs are converted in one go; escapes go
    // through a scratch buffer. Invalid UTF-8 fails like any malformed text.
    bool string(QString &out, bool share = false)
    {
        if (!eat('"'))
            return false;
        const char *start = p;
        bool plain = true;
        while (p < end && *p != '"') {
            const auto c = static_cast<unsigned char>(*p);
            if (c < 0x20)
                return false;
            if (c == '\\' || c >= 0x80) {
                plain = false;
                break;
            }
            ++p;
        }
        if (plain) {
            if (p >= end)
                return false;
            const QByteArrayView bytes(start, p - start);
            ++p;
            out = share && pool ? pool->intern(bytes) : QString::fromLatin1(bytes.data(), bytes.size());
            return true;
        }
        p = start;
        scratch.clear();
        while (p < end && *p != '"') {
            const auto c = static_cast<unsigned char>(*p);
            if (c < 0x20)
                return false;
            if (c == '\\') {
                ++p;
                if (p >= end)
                    return false;
                const char e = *p++;
                switch (e) {
                case '"': scratch.append(u'"'); break;
                case '\\': scratch.append(u'\\'); break;
                case '/': scratch.append(u'/'); break;
                case 'b': scratch.append(u'\b'); break;
                case 'f': scratch.append(u'\f'); break;
                case 'n': scratch.append(u'\n'); break;
                case 'r': scratch.append(u'\r'); break;
                case 't': scratch.append(u'\t'); break;
                case 'u': {
                    char16_t u;
                    if (!hex4(u))
                        return false;
                    if (QChar::isHighSurrogate(u)) {
                        char16_t low;
                        if (!(literal("\\u") && hex4(low) && QChar::isLowSurrogate(low)))
                            return false;
                        scratch.append(QChar(u)).append(QChar(low));
                    } else if (QChar::isLowSurrogate(u)) {
                        return false;
                    } else {
                        scratch.append(QChar(u));
                    }
                    break;
                }
                default: return false;
                }
            } else {
                const char *run = p;
                while (p < end && *p != '"' && *p != '\\' && static_cast<unsigned char>(*p) >= 0x20)
                    ++p;
                if (!validUtf8(run, p))
                    return false;
                scratch.append(QString::fromUtf8(run, p - run));
            }
        }
        if (p >= end)
            return false;
        ++p;
        out = share && pool ? pool->intern(QByteArrayView(scratch.toUtf8())) : scratch;
        return true;
    }

    static bool validUtf8(const char *s, const char *e)
    {
        while (s < e) {
            const auto c = static_cast<unsigned char>(*s);
            int extra;
            char32_t cp;
            if (c < 0x80) {
                ++s;
                continue;
            }
            if (c >= 0xC2 && c <= 0xDF) {
                extra = 1;
                cp = c & 0x1F;
            } else if (c >= 0xE0 && c <= 0xEF) {
                extra = 2;
                cp = c & 0x0F;
            } else if (c >= 0xF0 && c <= 0xF4) {
                extra = 3;
                cp = c & 0x07;
            } else
                return false;
            if (e - s <= extra)
                return false;
            for (int k = 1; k <= extra; ++k) {
                const auto cc = static_cast<unsigned char>(s[k]);
                if ((cc & 0xC0) != 0x80)
                    return false;
                cp = (cp << 6) | (cc & 0x3F);
            }
            // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
            if ((extra == 2 && cp < 0x800) || (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF)) ||
                (cp >= 0xD800 && cp <= 0xDFFF))
                return false;
            s += extra + 1;
        }
        return true;
    }

    bool number(double &out, bool mustFit = true)
    {
        const char *start = p;
        eat('-');
        if (p < end && *p == '0') {
            ++p;
        } else {
            if (!(p < end && *p >= '1' && *p <= '9'))
                return false;
            while (p < end && *p >= '0' && *p <= '9')
                ++p;
        }
        if (eat('.')) {
            if (!(p < end && *p >= '0' && *p <= '9'))
                return false;
            while (p < end && *p >= '0' && *p <= '9')
                ++p;
        }
        if (p < end && (*p == 'e' || *p == 'E')) {
            ++p;
            if (!eat('+'))
                eat('-');
            if (!(p < end && *p >= '0' && *p <= '9'))
                return false;
            while (p < end && *p >= '0' && *p <= '9')
                ++p;
        }
        auto [ptr, ec] = std::from_chars(start, p, out);
        // A number too large for a double is refused rather than made infinite.
        if (!mustFit)
            return true; // an ignored member only has to be well formed
        return ptr == p && ec == std::errc() && std::isfinite(out);
    }

    bool fields(Fields &out)
    {
        if (!eat('{'))
            return false;
        QList<Fields::Entry> entries;
        skipSpace();
        if (!eat('}')) {
            for (;;) {
                skipSpace();
                Fields::Entry e;
                if (!string(e.key, true))
                    return false;
                skipSpace();
                if (!eat(':'))
                    return false;
                skipSpace();
                if (!string(e.value, true))
                    return false; // every value of f is a string
                entries.append(std::move(e));
                skipSpace();
                if (eat(','))
                    continue;
                if (eat('}'))
                    break;
                return false;
            }
        }
        // The writer emits keys in order; only a hand-made row needs sorting.
        // A repeated key keeps its last value, as a JSON object would.
        const auto notBefore = [](const Fields::Entry &x, const Fields::Entry &y) {
            return !Fields::keyLess(x.key, y.key);
        };
        if (std::adjacent_find(entries.cbegin(), entries.cend(), notBefore) == entries.cend()) {
            out = Fields::fromSorted(std::move(entries));
            return true;
        }
        std::stable_sort(entries.begin(), entries.end(), [](const Fields::Entry &a, const Fields::Entry &b) {
            return Fields::keyLess(a.key, b.key);
        });
        QList<Fields::Entry> unique;
        unique.reserve(entries.size());
        for (auto &e : entries) {
            if (!unique.isEmpty() && unique.last().key == e.key)
                unique.last().value = std::move(e.value);
            else
                unique.append(std::move(e));
        }
        out = Fields::fromSorted(std::move(unique));
        return true;
    }

    bool skipValue(int depth)
    {
        if (depth > 200 || p >= end)
            return false;
        QString ignored;
        double num;
        switch (*p) {
        case '"': return string(ignored);
        case 't': return literal("true");
        case 'f': return literal("false");
        case 'n': return literal("null");
        case '{':
        case '[': {
            const char close = *p == '{' ? '}' : ']';
            const bool object = *p == '{';
            ++p;
            skipSpace();
            if (eat(close))
                return true;
            for (;;) {
                skipSpace();
                if (object) {
                    if (!string(ignored))
                        return false;
                    skipSpace();
                    if (!eat(':'))
                        return false;
                    skipSpace();
                }
                if (!skipValue(depth + 1))
                    return false;
                skipSpace();
                if (eat(','))
                    continue;
                return eat(close);
            }
        }
        default: return number(num, false);
        }
    }
};

} // namespace

namespace RecJSON {

QByteArray encode(const Rec &r)
{
    QByteArray out;
    out.reserve(256);
    out.append("{\"id\":");
    appendString(out, r.id);
    out.append(",\"kind\":");
    appendString(out, r.kind);
    out.append(",\"company\":");
    appendString(out, r.company);
    out.append(",\"project\":");
    appendString(out, r.project);
    out.append(",\"parent\":");
    appendString(out, r.parent);
    out.append(",\"created\":");
    appendNumber(out, r.created);
    out.append(",\"updated\":");
    appendNumber(out, r.updated);
    out.append(",\"f\":{");
    bool first = true;
    for (const Fields::Entry &e : r.f) {
        if (!first)
            out.append(',');
        first = false;
        appendString(out, e.key);
        out.append(':');
        appendString(out, e.value);
    }
    out.append("}}");
    return out;
}

std::optional<Rec> decode(QByteArrayView json, StringPool *pool)
{
    return Reader(json, pool).record();
}

} // namespace RecJSON
