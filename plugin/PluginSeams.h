// Where the procedures meet windows, threads and the raw host. The DLL puts the real things
// in, the tests their own.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "plugin/PanelState.h"
#include "plugin/host/HostAbi.h"
#include "plugin/host/ZunEditorInterface.h"

namespace zoka {

// The dialog resource of both panels: what the number given to a panel's thread selects.
inline constexpr int kPanelDialog = 1001;

// What a panel shows. Made and freed on the editor's thread; its window is made and destroyed on the panel's
// thread, so the object outlives the window.
class PanelDialog {
public:
    virtual ~PanelDialog() = default;
};

// The thread that carries one panel's window and message loop. Freed only
// after waitUntilGone or leaveForUnload.
class PanelThread {
public:
    virtual ~PanelThread() = default;

    // [editor thread] Starts the thread and returns when its window stands. False when the thread or
    // the window could not be made; then the run is ended already. Returning earlier would leave a
    // moment in which the library can't be unloaded, because a thread's start and a window's
    // creation need the loader's lock.
    virtual bool start() = 0;
    // [editor thread] Posts the close request; it is never lost, whatever the panel is doing at that moment.
    virtual void requestClose() = 0;
    // [editor thread] False when the panel is closing.
    virtual bool bringToFront() = 0;
    // [editor thread, without the loader's lock] Returns when the thread has ended, however long that takes.
    // Messages that the panel sends to this thread are answered meanwhile.
    virtual void waitUntilGone() = 0;
    // [the unloading thread, with the loader's lock held] Closes the panel and returns when the thread
    // runs no code of this library and never will again. It can't have ended by then: a thread's end
    // needs the loader's lock.
    virtual void leaveForUnload() = 0;
};

// The entity that a behaviour panel was opened for.
struct EntityDescriptor {
    std::string entity;
    std::string behavior;
};

// What the user decided in the new-project dialog.
struct NewProjectChoice {
    std::string projectFolder;  // with its trailing separator
    std::string level;          // name of the level map without extension; empty: none chosen
};

class PluginSeams {
public:
    virtual ~PluginSeams() = default;

    // `rawEditor` is the host's editor object, not null.
    virtual std::unique_ptr<ZunEditorInterface> makeEditor(void* rawEditor) = 0;

    // Both panels: `editor` lives until the dialog is freed; the dialog calls it on the panel's thread.
    virtual std::unique_ptr<PanelDialog> makeCustomizePanel(ZunEditorInterface& editor) = 0;
    // True when the project of `projectFile` (which exists) defines a behaviour panel for the entity; fills
    // the descriptor then.
    virtual bool behaviorPanelDefined(const std::string& projectFile, const std::string& entity,
                                      EntityDescriptor& descriptor) = 0;
    // The panel form (mode 2) for a descriptor, the plain form without one. `context` may be null; the dialog
    // takes from it what it needs.
    virtual std::unique_ptr<PanelDialog> makeBehaviorPanel(
        ZunEditorInterface& editor, const HostContext* context,
        const std::optional<EntityDescriptor>& descriptor) = 0;
    virtual std::unique_ptr<PanelThread> makeThread(PanelState& state, PanelDialog& dialog, int number) = 0;

    // Modal dialogs; they return when the user has closed them.
    virtual void runProjectManager(ZunEditorInterface& editor, const std::string& projectFile) = 0;
    virtual void runScriptManager(ZunEditorInterface& editor, const std::string& mainScript,
                                  const std::string& projectFolder, const std::string& catalogue) = 0;
    // Nothing when the user cancelled.
    virtual std::optional<NewProjectChoice> runNewProject(ZunEditorInterface& editor) = 0;
};

}  // namespace zoka
