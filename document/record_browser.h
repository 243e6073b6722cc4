// A list of records edited one at a time: a doubly linked list with a cursor, navigation,
// insert, append, delete, copy and paste. The browser knows nothing of controls; whoever
// edits it (a dialog, the command line, a test) supplies BrowserHooks that read the current
// record from its controls and write a record into them.
//
// The list travels with its parameter record (copying copies every node); the hooks are
// attached only while the list is being edited (open ... close).
#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "core/platform.h"
#include "document/record_form.h"

namespace orv {

// What the list's buttons should show after every change.
struct BrowserUpdate {
    int count = 0;
    int cursor = 0;             // one-based, as "Cursor" shows it
    bool canGoBack = false;     // "First", "Previous": Cursor > 0
    bool canGoForward = false;  // "Next", "Last": Cursor < Count - 1
    bool canDelete = false;     // Count >= 2
    bool canPaste = false;      // the copy buffer holds a record
};
BrowserUpdate browserUpdate(int count, int cursor, bool bufferFull);

template <class Rec>
class BrowserHooks {
public:
    virtual ~BrowserHooks() = default;
    // Reads the controls into `record`; false when a field is invalid (the message has been
    // shown), and the move that asked for it does not happen.
    virtual bool readControls(Rec& record) = 0;
    virtual void writeControls(const Rec& record) = 0;
    virtual Rec makeDefault() { return Rec(); }
    // A record read from the controls may still be refused as a whole.
    virtual bool checkRecord(const Rec&) { return true; }
    virtual void beforeDelete(const Rec&) {}
    virtual void goneTo(int /*index*/) {}
    virtual void update(const BrowserUpdate& u) = 0;
};

template <class Rec>
class RecordBrowser {
public:
    RecordBrowser() : RecordBrowser(std::vector<Rec>{Rec()}) {}
    explicit RecordBrowser(const std::vector<Rec>& records) {
        ORV_ASSERT_TEXT(!records.empty(), "Count > 0", "rbrowser");
        for (const Rec& r : records) linkAtEnd(r);
        EditBrowseRecord = head_;
    }
    RecordBrowser(const RecordBrowser& other) {
        for (Node* n = other.head_; n; n = n->next) linkAtEnd(n->record);
        Cursor = other.Cursor;
        EditBrowseRecord = nodeAt(Cursor);
        ORV_ASSERT(EditBrowseRecord != NULL, "rbrowser");
        ORV_ASSERT(Count == other.Count, "rbrowser");
        buffer_ = other.buffer_;
    }
    RecordBrowser& operator=(const RecordBrowser& other) {
        if (this != &other) {
            RecordBrowser copy(other);
            swap(copy);
        }
        return *this;
    }
    ~RecordBrowser() { freeAll(); }

    // ---- editing ---------------------------------------------------------------------
    // Starts editing: the current record goes into the controls.
    void open(BrowserHooks<Rec>& hooks) {
        hooks_ = &hooks;
        IsOpen = true;
        show();
    }
    // Stores the controls into the current record and ends editing; false (still open)
    // when a field is invalid.
    bool close() {
        requireOpen();
        if (!store()) return false;
        IsOpen = false;
        hooks_ = nullptr;
        return true;
    }
    // Ends editing without storing (Cancel).
    void abandon() {
        IsOpen = false;
        hooks_ = nullptr;
    }

    bool first() { return moveTo(0); }
    bool previous() {
        ORV_ASSERT(Cursor > 0, "rbrowser");
        return moveTo(Cursor - 1);
    }
    bool next() {
        ORV_ASSERT(Cursor < Count - 1, "rbrowser");
        return moveTo(Cursor + 1);
    }
    bool last() { return moveTo(Count - 1); }

    // A new record with the defaults at the cursor (the current one moves up by one).
    bool insert() {
        requireOpen();
        if (!store()) return false;
        Node* n = new Node{hooks_->makeDefault(), EditBrowseRecord, EditBrowseRecord->prev};
        if (n->prev)
            n->prev->next = n;
        else
            head_ = n;
        EditBrowseRecord->prev = n;
        EditBrowseRecord = n;
        ++Count;
        show();
        return true;
    }
    // A new record with the defaults at the end of the list.
    bool append() {
        requireOpen();
        if (!store()) return false;
        linkAtEnd(hooks_->makeDefault());
        Cursor = Count - 1;
        EditBrowseRecord = nodeAt(Cursor);
        show();
        return true;
    }
    // Removes the current record; the record after it becomes current, or the one before
    // it when it was the last.
    void remove() {
        requireOpen();
        ORV_ASSERT(Count >= 2, "rbrowser");
        Node* dead = EditBrowseRecord;
        if (dead->next) dead->next->prev = dead->prev;
        if (dead->prev) dead->prev->next = dead->next;
        hooks_->beforeDelete(dead->record);
        EditBrowseRecord = dead->next ? dead->next : dead->prev;
        if (dead == head_) head_ = EditBrowseRecord;
        delete dead;
        --Count;
        if (Count > Cursor)
            goTo(Cursor);
        else
            goTo(--Cursor);
    }
    // Reads the controls into the copy buffer; false when a field is invalid.
    bool copy() {
        requireOpen();
        Rec r = EditBrowseRecord->record;
        if (!hooks_->readControls(r) || !hooks_->checkRecord(r)) return false;
        buffer_ = std::move(r);
        hooks_->update(state());
        return true;
    }
    // The copy becomes the current record.
    void paste() {
        requireOpen();
        ORV_ASSERT_TEXT(buffer_.has_value(), "CopyFull", "rbrowser");
        EditBrowseRecord->record = *buffer_;
        show();
    }
    // The current record goes back to the defaults; the others stay.
    void clear() {
        requireOpen();
        EditBrowseRecord->record = hooks_->makeDefault();
        show();
    }

    bool isOpen() const { return IsOpen; }
    int cursor() const { return Cursor; }
    bool bufferFull() const { return buffer_.has_value(); }
    BrowserUpdate state() const { return browserUpdate(Count, Cursor, buffer_.has_value()); }

    // ---- after editing -------------------------------------------------------------------
    int count() const {
        ORV_ASSERT(!IsOpen, "rbrowser");
        return Count;
    }
    std::vector<Rec> records() const {
        ORV_ASSERT(!IsOpen, "rbrowser");
        std::vector<Rec> out;
        for (Node* n = head_; n; n = n->next) out.push_back(n->record);
        return out;
    }
    const Rec& at(int index) const {
        ORV_ASSERT(!IsOpen, "rbrowser");
        ORV_ASSERT(index >= 0 && index < Count, "rbrowser");
        return nodeAt(index)->record;
    }
    template <class Eq>
    bool sameRecords(const RecordBrowser& other, Eq eq) const {
        ORV_ASSERT(!IsOpen, "rbrowser");
        if (Count != other.Count) return false;
        for (Node *a = head_, *b = other.head_; a; a = a->next, b = b->next)
            if (!eq(a->record, b->record)) return false;
        return true;
    }

private:
    struct Node {
        Rec record;
        Node* next;
        Node* prev;
    };

    void requireOpen() const { ORV_ASSERT_TEXT(IsOpen && hooks_, "IsOpen", "rbrowser"); }

    void linkAtEnd(const Rec& r) {
        Node* n = new Node{r, nullptr, nullptr};
        if (!head_) {
            head_ = n;
        } else {
            Node* t = head_;
            while (t->next) t = t->next;
            t->next = n;
            n->prev = t;
        }
        ++Count;
    }
    Node* nodeAt(int index) const {
        Node* n = head_;
        for (int i = 0; n && i < index; ++i) n = n->next;
        return index < 0 ? nullptr : n;
    }
    bool store() {
        Rec r = EditBrowseRecord->record;
        if (!hooks_->readControls(r) || !hooks_->checkRecord(r)) return false;
        EditBrowseRecord->record = std::move(r);
        return true;
    }
    bool moveTo(int index) {
        requireOpen();
        if (!store()) return false;
        goTo(index);
        return true;
    }
    void goTo(int index) {
        EditBrowseRecord = nodeAt(index);
        ORV_ASSERT(EditBrowseRecord != NULL, "rbrowser");
        Cursor = index;
        hooks_->goneTo(index);
        show();
    }
    void show() {
        hooks_->writeControls(EditBrowseRecord->record);
        hooks_->update(state());
    }
    void freeAll() {
        while (head_) {
            Node* n = head_->next;
            delete head_;
            head_ = n;
        }
    }
    void swap(RecordBrowser& o) {
        std::swap(head_, o.head_);
        std::swap(EditBrowseRecord, o.EditBrowseRecord);
        std::swap(Count, o.Count);
        std::swap(Cursor, o.Cursor);
        std::swap(IsOpen, o.IsOpen);
        std::swap(hooks_, o.hooks_);
        std::swap(buffer_, o.buffer_);
    }

    Node* head_ = nullptr;
    Node* EditBrowseRecord = nullptr;
    int Count = 0;
    int Cursor = 0;
    bool IsOpen = false;
    BrowserHooks<Rec>* hooks_ = nullptr;
    std::optional<Rec> buffer_;
};

// Hooks whose "controls" are a form state of the record's table: what the command line and
// the tests edit a list with, and what a dialog can wrap. An invalid field shows its
// message, as the dialog does.
template <class Rec>
class FormBrowserHooks : public BrowserHooks<Rec> {
public:
    explicit FormBrowserHooks(FormContext context = {}) : context_(context) {}
    bool readControls(Rec& record) override {
        std::optional<FormError> e = acceptRecord(Rec::table(), controls, record, context_);
        if (!e) return true;
        e->show();
        lastError = e;
        return false;
    }
    void writeControls(const Rec& record) override {
        controls = showRecord(Rec::table(), record, context_.waves);
    }
    void update(const BrowserUpdate& u) override { shown = u; }

    // Typing into a control by caption, as the command line does.
    std::optional<FormError> set(std::string_view caption, std::string_view value) {
        return setByCaption(Rec::table(), controls, caption, value, context_.waves);
    }

    FormState controls;
    BrowserUpdate shown;
    std::optional<FormError> lastError;

private:
    FormContext context_;
};

}  // namespace orv
