#pragma once

#include "glib/GObjectPtr.h"

#include <functional>
#include <gtk/gtk.h>

namespace velder {

// "Leave page?", asked as a modal question on the window when a page being closed asks to stay. "Stay" has
// the keyboard, so a stray Return loses nothing; Escape and closing the question are Stay too. The answer
// is given once, true for Leave; the question then closes itself.
class LeavePagePrompt {
public:
    using Answer = std::function<void(bool leave)>;

    LeavePagePrompt(GtkWindow* parent, Answer answer);
    ~LeavePagePrompt();
    LeavePagePrompt(const LeavePagePrompt&) = delete;
    LeavePagePrompt& operator=(const LeavePagePrompt&) = delete;

    GtkWindow* window() const { return m_window.get(); }
    GtkWidget* leaveButton() const { return m_leave; }
    GtkWidget* stayButton() const { return m_stay; }

    // Gives the answer as the buttons do, and closes the question.
    void answer(bool leave);

private:
    void dismiss();

    GObjectPtr<GtkWindow> m_window; // held, so that a parent that goes first takes nothing from under us
    GtkWidget* m_leave;
    GtkWidget* m_stay;
    Answer m_answer;
    bool m_dismissed = false;
};

} // namespace velder
