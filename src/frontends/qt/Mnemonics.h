#pragma once

#include <QAbstractButton>
#include <QSet>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

// The letters that are underlined in titles, and that choose them together with Alt (in an open menu alone).
// They are picked from the texts as they are shown, so that every language has its own and no string table
// holds marks.

/// Something that can have a letter.
struct Titled {
    QString text; ///< as it is to be read, without marks
    QString name; ///< by which programs know it, in Latin letters: used where the text has none; may be empty
};

/// Each text as a title with its letter marked. No letter is used twice, none is of `taken`, and as many
/// texts have one as the letters allow; the earlier ones have the better. Letters of `shared` stand for
/// something elsewhere in the window, too, and are for texts that are left without one. Where a writing has
/// no letters on the keyboard, one is put behind the text: "(&S)". A text without a letter stands as it is.
/// The letters that are used are added to `taken`.
[[nodiscard]] QStringList titlesWithMnemonics(const std::vector<Titled>& texts, QSet<QChar>& taken,
                                              const QSet<QChar>& shared = {});

/// The text that such a title, or one that title() made, shows.
[[nodiscard]] QString plainTitle(const QString& title);

/// Gives the button the title, unless it has it already, with a letter or without.
void setTitle(QAbstractButton& button, const std::string& text);
