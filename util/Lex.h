// A line walker over a text in memory, and helpers that split a line into tokens and scan numbers.
#pragma once

#include <cstdint>

#include "util/Export.h"
#include "util/LineIndex.h"

// What CLex::GetLastError() tells.
enum CLEXERR {
    CLEXERR_NONE = 0,      // every line is shorter than 1024 bytes
    CLEXERR_LONGLINE = 1,  // at least one line, its LF counted, is 1024 bytes or longer
};

// Walks a text line by line. The text belongs to the caller, must outlive the lexer and need not end with a
// 0; bytes of value 0 inside it are ordinary characters of a line. Lines end with a LF; a CR in front of it
// belongs to the line. Lines are counted from 0, lengths and positions are in bytes. Letters are compared
// without regard to case in ASCII alone, and numbers are read and written without regard to the locale.
//
// Threads: each lexer object is used from one thread at a time. The token walk (GetFirstToken, GetNextToken,
// GetNextTokenEx, GetTokenLen) keeps its state in class statics: one walk at a time in the whole program, on
// one thread. The other static helpers keep no state.
//
// No operation throws, except for lack of memory. A line number outside the array of lines would be a fault
// in this class and raises std::out_of_range.
class ZOKA_API CLex {
public:
    // Indexes the lines of `size` bytes at `text`. A null text has no lines; a size below 0
    // counts as 0; an empty text has one empty line. Sizes are kept in 32 bits: a text of 2 GiB
    // is cut at 2,147,483,646 bytes.
    CLex(const char* text, long size);
    ~CLex();  // the text stays
    CLex(const CLex&) = delete;
    CLex& operator=(const CLex&) = delete;

    // --- Lines

    // Those returned stay valid until the next call that delivers one; those inside the text, as long as it.

    // The next line as it stands, or null after the last. Every line but the last is a pointer into the text,
    // not 0-terminated, getLineLen() bytes long without its LF but with its CR. The last line is a
    // 0-terminated copy of at most 1024 bytes from which up to two trailing CR or LF are dropped.
    const char* getNextUnformLine();

    // The next line with something on it, from its first character that is neither blank nor tab: empty lines
    // and those that begin with "//" are passed over. A 0-terminated copy of at most 1024 bytes (getLineLen()
    // is the copy's length), or null at the end of the text. A line that holds just a CR is not empty. Of a last
    // line that is longer than that, the first 1024 bytes count, its leading blanks among them.
    const char* getNextLine();

    // Finds the next line, from the current one on, that begins with the `n` characters of `text` once its
    // leading blanks and tabs are off; past the end the search goes on at line 0, up to where it started.
    // Case is ignored. Returns a 0-terminated copy of at most 1024 bytes from the first character found; the
    // line after it is then the current one. Null when no line matches, `text` is null or `n` is below 0;
    // position and line length then stay.
    const char* search_to_line(const char* text, int n);
    const char* searchToLine(const char* text);  // the whole 0-terminated `text`
    // The same, but a match counts only where the line's end, a blank, a tab, a CR or a LF follows it. Every
    // line is looked at once.
    const char* searchToLineEx(const char* text);

    int setPosAtLine(int n);  // makes `n` the line to be delivered next; 0 when there is no such line, else 1
    int getCurrLine() const { return curr - 1; }  // the line last delivered, -1 before the first
    int getLineNum() const { return curr; }       // the line to be delivered next
    int getLinesNumber() const { return lines; }
    int getLineLen() const { return linelen; }  // length of the line last delivered
    long getPos() const;  // offset of the line to be delivered next; the text's size after the last
    // The start, in the text, of the line last delivered; null before the first.
    const char* getCurrLinePos() const;
    const char* getBuf() const { return buf; }
    long getBufSize() const { return bufsize; }
    int GetMaxLineSize() const { return kMaxLine; }  // 1024
    CLEXERR GetLastError() const { return error; }

    // Keeps a callback for users of the lexer to share; no operation of it is called here. Null is allowed.
    static void SetMessageProc(int (*proc)(int)) { message_box = proc; }

    // --- Tokens

    // A token is a run of characters bounded by blanks, tabs, CR, LF, the end of the string (a 0 or the
    // length given) or a character of `delims`, a 0-terminated list of further separators or null. A
    // separator is never part of a token nor a token of its own. Tokens are returned as pointers into the
    // text, neither copied nor terminated. A null text is a text without tokens.

    // Starts a walk over `len` bytes of `text` and returns its first token or null. `text` and `delims` are
    // kept, not copied: they must live as long as the walk.
    static const char* GetFirstToken(const char* text, long len, const char* delims = nullptr);
    // The next token of the walk, or null at the end of the line (0, CR, LF or the length
    // given), which ends the walk.
    static const char* GetNextToken();
    // The same, but a token that begins with a double quote whose closing quote follows in the bytes left (a
    // 0 ends them) is the text between the quotes, possibly empty; the walk goes on after the closing quote.
    // Without a closing quote it is an ordinary token, its quote included.
    static const char* GetNextTokenEx();
    // Length of the token last returned, 0 after a null.
    static int GetTokenLen() { return gettoken_tokenlen; }

    // Number of characters of 0-terminated `text` before its first blank, tab, LF, CR or separator.
    static int GetFirstTokenSize(const char* text, const char* delims = nullptr);

    // The start of the first token of 0-terminated `text`, or null when its line (up
    // to CR, LF or 0) has none.
    static const char* GetTokenPos(const char* text, const char* delims = nullptr);

    // Copies the first token of 0-terminated `text`, 0-terminated, into `buffer` of `size` bytes. `buffer` is
    // null (`size` 0) or was allocated with new[]; one that is too small is replaced by a larger one and
    // `size` set anew. The caller frees it with delete[]. Returns the position after the token; null, with
    // the buffer as it was, when the line has no token. `text` must not lie in `buffer`.
    static const char* GetToken(const char* text, char*& buffer, int& size, const char* delims = nullptr);

    // The group of tokens between two brackets: when the first token of 0-terminated `text` begins with
    // `open`, returns the position after it and sets `len` to the bytes up to the `close` that matches (inner
    // pairs counted). Null and 0 when it begins otherwise or the group is not closed before the line ends.
    static const char* GetTokenGroup(const char* text, char open, char close, int& len);

    // The first text in double quotes on the line of 0-terminated `text`. This form returns the position
    // after the opening quote and sets `len` to the bytes between the quotes; null and 0 when no pair of
    // quotes is on the line.
    static const char* GetString(const char* text, int& len);
    // This form copies it, 0-terminated and cut to what fits, into `buffer` of `size` bytes (at
    // least 1) and returns the position after the closing quote; null, with an empty text in the
    // buffer, when there is none.
    static const char* GetString(const char* text, char* buffer, int size);

    // The first `c` in the 0-terminated `text`, or null. A 0 is never found.
    static const char* StrChr(const char* text, char c);
    // The first `c` before the line's end (CR, LF or 0), or null.
    static const char* LineStrChr(const char* text, char c);
    // The first place before the line's end where all of `part` stands, case regarded, or null. An empty
    // `part` stands at the start.
    static const char* LineStrStr(const char* text, const char* part);
    // The first character that is neither blank nor tab: at the end of the line its
    // CR, LF or 0. Null for null.
    static const char* NextChar(const char* text);
    // Replaces every `from` of the 0-terminated `text` by `to`; returns how many there
    // were. A 0 is not replaced.
    static int ReplaceChar(char* text, char from, char to);
    // Removes every `c` from the 0-terminated `text`, in place; returns the new length.
    static int DeleteChar(char* text, char c);

    // --- Numbers

    // The Scan operations skip leading blanks and tabs of 0-terminated `text`, read an optional '-' and
    // digits, and return the position after the number; null, with `value` as it was, when no digit follows.
    // Digits are gathered in 32 bits on every system: what goes beyond wraps around.

    static const char* ScanIntValue(const char* text, int& value);
    // Integer digits, then optionally '.' and fraction digits; no exponent. The point is taken even where no
    // digit follows it. Each of the two parts is gathered in 32 bits.
    static const char* ScanDoubleValue(const char* text, double& value);
    static const char* ScanFloatValue(const char* text, float& value);
    // Binary digits; with '-' the 32-bit two's complement.
    static const char* ScanBinValue(const char* text, unsigned long& value);
    // The same as a signed 32-bit number: 32 ones are -1. 0 when no digit is found.
    static long BinToLong(const char* text);
    // Writes the low 32 bits of `value` as binary digits without leading zeros, 0-terminated: at most 33
    // bytes. Returns the number of digits.
    static int LongToBin(char* buffer, long value);

    // Whether the first `len` characters are all decimal digits after one optional '+' or '-'. A lone sign
    // counts as a number. False for null, `len` < 1 and a text that ends sooner.
    static bool IsDigit(const char* text, int len);

    // Writes `value` with six decimals and drops the zeros at their end, the point too when nothing is left:
    // 2, 2.5. 0-terminated, at most 318 bytes (32 hold every value below 1e23). Returns the length.
    static int FormatFloat(char* buffer, double value);

    // Removes leading and trailing blanks, tabs, CR and LF in place; returns the new length, 0 for null.
    static int StringCrop(char* text);

    // The size of the block in braces that begins in `len` bytes of `text`: the offset of the LF that ends
    // the line on which the first '{' is closed, or `len` when that is the last line and has no LF. -1 when
    // `len` < 1 or the block does not close. Of each line, the first 1024 characters count, up to a "//"; all
    // its '{' come before its '}'; a '}' with nothing open closes nothing.
    static long GetDefinitionBlockSize(const char* text, long len);

private:
    static constexpr int kMaxLine = 1024;

    struct Span {
        const char* text;
        int len;
    };
    Span lineAt(int index, long most) const;
    const char* deliverCopy(Span span);
    const char* search(const char* text, int n, bool wholeWord);

    const char* buf;  // the text, not owned
    int32_t bufsize;  // its size in bytes
    int curr;         // the line to be delivered next
    char line[kMaxLine + 1];
    int linelen;  // length of the line last delivered
    int lines;
    zoka::LineIndex starts;
    CLEXERR error;

    static const char* gettoken_buf;     // where the search for the next token starts
    static long gettoken_buflen;         // bytes left from there
    static int gettoken_tokenlen;        // length of the token last returned
    static const char* gettoken_delims;  // further separators, or null
    static int (*message_box)(int);
};
