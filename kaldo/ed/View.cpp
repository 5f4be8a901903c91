#include "kaldo/ed/View.h"

#include "kaldo/ed/Editor.h"

KxGsView* kxgsActiveView()
{
    kaldo::Editor* editor = kaldo::currentEditor();
    return editor ? &editor->view() : nullptr;
}
