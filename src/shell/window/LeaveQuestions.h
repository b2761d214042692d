#pragma once

#include <deque>
#include <functional>
#include <memory>

typedef struct _GtkWindow GtkWindow;

namespace velder {

class BrowserTab;
class LeavePagePrompt;

// The window's "Leave page?" questions, one at a time: closing a window may find several pages that ask to
// stay, and each is asked about in turn, with its tab brought to the front first. A window shutting down
// asks nothing: every page leaves.
class LeaveQuestions {
public:
    using Answer = std::function<void(bool leave)>;
    using ShowTab = std::function<void(BrowserTab&)>;

    LeaveQuestions(GtkWindow* window, ShowTab showTab);
    ~LeaveQuestions();
    LeaveQuestions(const LeaveQuestions&) = delete;
    LeaveQuestions& operator=(const LeaveQuestions&) = delete;

    void ask(BrowserTab& tab, Answer answer);
    // From now on every page leaves, the one being asked about too.
    void leaveAll();

    LeavePagePrompt* current() const { return m_prompt.get(); }

private:
    struct Question {
        std::weak_ptr<BrowserTab> tab;
        Answer answer;
    };
    void showNext();

    GtkWindow* m_window;
    ShowTab m_showTab;
    std::deque<Question> m_waiting;
    std::unique_ptr<LeavePagePrompt> m_prompt;
    bool m_leavingAll = false;
};

} // namespace velder
