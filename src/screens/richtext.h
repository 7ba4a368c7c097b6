#pragma once
#include <QtGui/QFont>
#include <QtWidgets/QTextEdit>

class QMimeData;

// The rich-text editor of a document: Qt's text edit that also takes pasted
// and dropped pictures into the text, and reports every change.
class RichTextView : public QTextEdit
{
    Q_OBJECT
public:
    explicit RichTextView(QWidget *parent = nullptr);
    // Puts `image` at the caret, shown no wider than the text and kept at most
    // 2000 pixels on its longer side.
    void insertImage(const QImage &image);

Q_SIGNALS:
    // The text or its formatting changed through the editor.
    void textDidChange();
    // Ctrl+B, Ctrl+I or Ctrl+U was pressed in the text: 0 bold, 1 italic, 2 underline.
    void traitKey(int trait);

protected:
    bool event(QEvent *e) override;
    void keyPressEvent(QKeyEvent *e) override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    int m_pictures = 0;
};

// The formatting commands of the document panel, applied to the selection
// of one RichTextView (or, with no selection, to the word at the caret and
// what is typed next).
class RichTextController
{
public:
    enum Trait { Bold, Italic, Underline };

    // The point sizes of the two headings and of normal text.
    static constexpr qreal kHeading1 = 20;
    static constexpr qreal kHeading2 = 15;
    static constexpr qreal kNormal = 12;

    explicit RichTextController(RichTextView *view);
    RichTextView *view() const { return m_view; }

    // Turns the trait off when the whole selection has it, on otherwise.
    void toggleTrait(Trait trait);
    // Whether every character of the selection (or the caret's format) has the trait.
    bool hasTrait(Trait trait) const;
    // The whole paragraphs of the selection become a bold system font of `size`
    // points, marked as heading `level` for Word.
    void heading(qreal size, int level);
    // The whole paragraphs of the selection become plain system text of 12 points.
    void normalText();
    // Each paragraph of the selection gets a bullet; when all of them have one already, it goes.
    void bullets();
    // The paragraph alignment of the selection.
    void align(Qt::Alignment alignment);
    // The selection in the system red.
    void redText();
    // The font of the selection.
    void applyFont(const QFont &font);
    // Opens the font chooser over the view and applies what is chosen.
    void chooseFont();

    // The red of "Red text".
    static QColor red();

private:
    // The cursor over the selection, or over the word at the caret when nothing is selected.
    QTextCursor wordOrSelection() const;
    // The cursor over whole paragraphs of the selection.
    QTextCursor paragraphs() const;
    void merge(const QTextCharFormat &format);

    RichTextView *m_view;
};
