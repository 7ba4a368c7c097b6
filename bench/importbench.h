#pragma once

class QTextStream;

// Times an import of 10,000 contacts and 1,000 cost codes from CSV into a new
// company on a store file of its own: reading and checking (the preview), the
// write, and a second preview of the same files (every row matched, none new).
void runImportBench(int runs, QTextStream &out);
