// The editor as a plug-in sees it in memory: the application object and, behind its eleventh word, an object
// whose first word points to a table of member functions called by slot. Every call is logged and handed on
// to a ZunEditorInterface. Slots that no plug-in is known to call answer 0.
#pragma once

#include <atomic>
#include <string>

#include "plugin/host/HostAbi.h"
#include "plugin/host/ZunEditorInterface.h"
#include "tools/editor/win/CallLog.h"

namespace zoka {

// How the host answers; for trying how a plug-in bears a bad one.
enum class HostFault {
    None,
    Fail,   // every operation fails and leaves its buffer alone
    Empty,  // every operation succeeds, every text is empty
    Full,   // every operation succeeds, every text fills its whole buffer without a terminator
};

// "normal", "fail", "empty", "full". False for another word.
bool readHostFault(const std::string& word, HostFault& fault);

class HostTable {
public:
    // `behind` and `log` must outlive the table.
    HostTable(ZunEditorInterface& behind, CallLog& log);
    HostTable(const HostTable&) = delete;
    HostTable& operator=(const HostTable&) = delete;

    // What PIInitialize is given. Stays valid as long as this object.
    AppInterface* appInterface() { return &m_application; }
    // Puts the editor interface into the application object, or null. [editor thread]
    void setEditorPresent(bool present);
    void setFault(HostFault fault) { m_fault = fault; }
    HostFault fault() const { return m_fault; }
    // How long each answer about the project takes, as of an editor that is busy.
    void setDelay(unsigned ms) { m_delay = ms; }

private:
    // What the plug-in holds a pointer to. The first word is the table.
    struct RawEditor {
        const void* const* table;
        HostTable* owner;
    };
    struct Slots;  // the table's functions
    friend struct Slots;

    // Fills a text buffer of the plug-in's as the fault mode says; the word to answer.
    std::int32_t answerText(const std::string& call, char* buffer, std::int32_t size, bool have,
                            const std::string& text);
    std::int32_t answerWord(const std::string& call, bool done);

    ZunEditorInterface& m_behind;
    CallLog& m_log;
    std::atomic<HostFault> m_fault{HostFault::None};
    std::atomic<unsigned> m_delay{0};
    RawEditor m_editor;
    AppInterface m_application{};
};

}  // namespace zoka
