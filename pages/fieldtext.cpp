#include "fieldtext.h"

#include <QTextOption>

namespace FieldText {

namespace {

/// In characters. The toolkit looks for the end of a word anew on every line that the word takes: with words of a
/// megabyte, as encoded binary data are, that takes minutes.
constexpr int kMaxWordLength = 2000;

bool hasEndlessWord(const QString &text)
{
    int length = 0;
    for (const QChar character : text) {
        length = character.isSpace() ? 0 : length + 1;
        if (length > kMaxWordLength)
            return true;
    }
    return false;
}

} // namespace

void showText(QPlainTextEdit *field, const QString &text)
{
    field->setWordWrapMode(hasEndlessWord(text) ? QTextOption::WrapAnywhere
                                                : QTextOption::WrapAtWordBoundaryOrAnywhere);
    field->setPlainText(text);
}

} // namespace FieldText
