// The codes of the XML layer and their message texts.
#pragma once

enum XMLErrorCode : int {
    kXmlNone = 0,
    kXmlMissingEndTag = 1,      // the text ends inside an element
    kXmlNoData = 2,             // nothing there, or white space alone
    kXmlFirstNotStartTag = 3,   // something else than markup, or an end tag, before the top element
    kXmlMissingTagName = 4,     // "<" without a name behind it
    kXmlMissingEndTagName = 5,  // "</" without a name behind it
    kXmlUnmatchedQuote = 6,     // an attribute value that is never closed
    kXmlUnmatchedEndTag = 7,    // an end tag of another name than the open element's, or without one
    kXmlUnmatchedClear = 8,     // a comment, CDATA section, DOCTYPE or processing instruction without its end
                                // ("--" inside a comment too), or "]]>" in a text
    kXmlUnexpectedToken = 9,    // a character that may not stand there
    kXmlInvalidTag = 10,        // a bad name, a doubled attribute, a bad or misplaced declaration
    kXmlNoElements = 11,        // comments and the like, but no element
    kXmlFileNotFound = 12,      // the file can't be opened or read
    kXmlFirstTagNotFound = 13,  // the top element is not the expected one
    kXmlUnknownEntity = 14,  // a reference that is none of the five, malformed, or to a forbidden character
    kXmlCannotConvert = 15,  // the bytes are not what the file's encoding says
    kXmlCannotOpenForWriting = 16,
    kXmlCannotWrite = 17,
    kXmlBase64Length = 18,  // 18 to 21: texts only, no operation of ours gives them
    kXmlBase64Character = 19,
    kXmlBase64Truncated = 20,
    kXmlBase64BufferSmall = 21,
};

// The message text of a code; "Unknown" for any other number. Static storage, never null.
const char* xmlErrorText(int code);
