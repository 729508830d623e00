#include "frontends/qt/Mnemonics.h"

#include "frontends/qt/Binding.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace frontend {

namespace {

constexpr QChar mark(u'&');

bool isEastAsian(QChar letter) {
    constexpr QChar longVowel(u'\u30FC'); // used in words of several scripts
    const QChar::Script script = letter.script();
    return letter == longVowel || script == QChar::Script_Han || script == QChar::Script_Hiragana ||
           script == QChar::Script_Katakana || script == QChar::Script_Hangul;
}

/// True when the text is written in characters that are not on a keyboard.
bool needsLetterBehind(const QString& text) {
    return std::ranges::any_of(text, isEastAsian);
}

/// True for a letter that needs several keys on many keyboards, such as an accented one.
bool isRare(QChar letter) {
    constexpr QChar sharpS(u'\u00DF'); // has no capital
    return letter == sharpS || letter.decompositionTag() != QChar::NoDecomposition;
}

/// True for a letter that hides the line below it.
bool hangsDown(QChar letter) {
    return QStringView(u"gjpqyQ").contains(letter);
}

/// Returns the letters of the text that are on a keyboard, the best first: its first one, those that begin
/// its words, the others, of which those that hide their line come later, and last the rare ones.
QString lettersIn(const QString& text) {
    enum Rank { First, OfWord, Inner, Hanging, Rare };

    std::array<QString, 5> ranked;
    QChar before;
    for (const QChar each : text) {
        if (each.isLetterOrNumber() && !isEastAsian(each)) {
            const bool begins = !before.isLetterOrNumber();
            const Rank rank = isRare(each)              ? Rare
                              : !begins                 ? (hangsDown(each) ? Hanging : Inner)
                              : ranked[First].isEmpty() ? First
                                                        : OfWord;
            ranked.at(rank) += each.toUpper();
        }
        before = each;
    }
    return ranked[First] + ranked[OfWord] + ranked[Inner] + ranked[Hanging] + ranked[Rare];
}

QString lettersFor(const Titled& titled) {
    if (!needsLetterBehind(titled.text)) {
        return lettersIn(titled.text);
    }
    QString letters = lettersIn(titled.text) + lettersIn(titled.name);
    letters.removeIf([](QChar each) { return each.unicode() > 0x7f; }); // removes the long-vowel sign
    return letters + QLatin1String("ABCDEFGHIJKLMNOPQRSTUVWXYZ");
}

/// Which text has which letter. A later text may take one from an earlier text that can use another, but
/// takes a free one first if texts have letters already.
class Letters {
  public:
    Letters(const std::vector<Titled>& texts, const QSet<QChar>& taken, const QSet<QChar>& shared) {
        for (const Titled& each : texts) {
            QString wanted = lettersFor(each);
            wanted.removeIf([&taken](QChar letter) { return taken.contains(letter); });
            wanted_.push_back(wanted);
        }
        keep(texts);
        const std::vector<QString> all = wanted_;
        for (const bool mayTake : {false, true}) {
            const auto giveExcept = [this, &all, mayTake](const auto& isAvoided) {
                wanted_ = all;
                for (QString& each : wanted_) {
                    each.removeIf(isAvoided);
                }
                giveAll(mayTake);
            };
            if (mayTake || !holders_.isEmpty()) {
                giveExcept([&shared](QChar letter) { return isRare(letter) || shared.contains(letter); });
                giveExcept(isRare);
                giveExcept([](QChar) { return false; });
            }
        }
    }

    /// Returns the text's letter; a null character when it has none.
    [[nodiscard]] QChar of(std::size_t text) const { return holders_.key(text); }

  private:
    void keep(const std::vector<Titled>& texts) {
        for (std::size_t text = 0; text < texts.size(); ++text) {
            const QChar letter = texts[text].letter;
            if (wanted_[text].contains(letter) && !holders_.contains(letter)) {
                holders_.insert(letter, text);
            }
        }
    }

    void giveAll(bool mayTake) {
        for (std::size_t text = 0; text < wanted_.size(); ++text) {
            QSet<QChar> tried;
            if (of(text).isNull()) {
                give(text, mayTake, tried);
            }
        }
    }

    bool give(std::size_t text, bool mayTake, QSet<QChar>& tried) {
        for (const QChar letter : wanted_[text]) {
            if (!holders_.contains(letter)) {
                holders_.insert(letter, text);
                return true;
            }
        }
        for (const QChar letter : mayTake ? wanted_[text] : QString()) {
            if (!tried.contains(letter)) {
                tried.insert(letter);
                if (give(holders_.value(letter), mayTake, tried)) {
                    holders_.insert(letter, text);
                    return true;
                }
            }
        }
        return false;
    }

    std::vector<QString> wanted_;
    QHash<QChar, std::size_t> holders_;
};

QString escaped(QString text) {
    return text.replace(mark, QLatin1String("&&"));
}

/// Returns the position of the letter: at the beginning of a word, else its first one; -1 without a letter.
qsizetype placeOf(QChar letter, const QString& text) {
    qsizetype inside = -1;
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (text[place].toUpper() != letter) {
            continue;
        }
        if (place == 0 || !text[place - 1].isLetterOrNumber()) {
            return place;
        }
        inside = inside < 0 ? place : inside;
    }
    return inside;
}

QString marked(const QString& text, QChar letter) {
    if (letter.isNull()) {
        return escaped(text);
    }
    if (needsLetterBehind(text)) { // insert it before the colon or the dots
        static const QRegularExpression ending(QStringLiteral("(?:[:：…]|\\.\\.\\.)?$"));
        const qsizetype place = text.indexOf(ending);
        return escaped(text.left(place)) + QLatin1String("(&") + letter + QLatin1Char(')') +
               escaped(text.mid(place));
    }
    const qsizetype place = placeOf(letter, text);
    return escaped(text.left(place)) + mark + escaped(text.mid(place));
}

} // namespace

QStringList titlesWithMnemonics(const std::vector<Titled>& texts, QSet<QChar>& taken,
                                const QSet<QChar>& shared) {
    const Letters letters(texts, taken, shared);
    QStringList titles;
    for (std::size_t text = 0; text < texts.size(); ++text) {
        const QChar letter = letters.of(text);
        titles += marked(texts[text].text, letter);
        if (!letter.isNull()) {
            taken.insert(letter);
        }
    }
    return titles;
}

QString plainTitle(const QString& title) {
    static const QRegularExpression behind(QStringLiteral("\\(&[^&]\\)"));
    static const QRegularExpression marks(QStringLiteral("&(.?)"));
    QString plain = title;
    // Other titles, with letters marked in place, may end like that.
    if (plain.remove(behind); !needsLetterBehind(plain)) {
        plain = title;
    }
    return plain.replace(marks, QStringLiteral("\\1"));
}

void setTitle(QAbstractButton& button, const std::string& text) {
    if (plainTitle(button.text()) != shown(text)) {
        button.setText(title(text));
    }
}

} // namespace frontend
