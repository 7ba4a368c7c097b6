#pragma once
#include "documents/printengine.h"
#include "documents/printsource.h"

#include <functional>

class PagedDocument;
class QPrinter;
class QWidget;

// The screen side of printing: a job goes through the native print dialog
// with a live preview, drawn by the same paged engine as saved PDFs.
namespace PrintEngine {

// Shows `pages` for `printer` and prints them when the user asks.
using Dialog = std::function<void(PagedDocument &pages, QPrinter &printer, QWidget *parent)>;

// Makes the job's source and opens the print preview over `parent`; beeps when nothing is made.
void run(const PrintJob &job, QWidget *parent = nullptr);
// Draws every page of `pages` that `printer`'s page range asks for, laid out for its paper first.
void printPages(PagedDocument &pages, QPrinter &printer);
// Beeps for a print that has nothing to print.
void beep();
// How many times beep() has sounded in this run.
int beeps();
// The dialog step of run(); empty means the preview dialog. Tests put their own here.
Dialog &dialogHook();

} // namespace PrintEngine
