// DUNXArgs: a small getopt over a command line.
#pragma once

#include <dunx/DUNXExport.h>

/// Walks `argv` and recognises options against a caller's list of option
/// names; a name ending in ':' takes an argument (the ':' is not part of it).
/// The vector is not copied: it must outlive the object.
///
/// An argument "-text" selects the first option whose name starts with "text"
/// ("-ver" selects "verbose", "-o" selects "o:", a lone "-" the first option);
/// failing that, if its first letter is a one-letter option, the argument is a
/// cluster of one-letter options ("-vo" gives "v", then "o").
///
///     char* options[] = {"v", "o:"};
///     int i;
///     while (args.GetNextOption(2, options, &i))
///         if (i == 1) args.GetOptionArgument(&outName);
class DUNX_EXPORT DUNXArgs {
public:
    /// Starts before the first argument (at the program name). `argc` of 0 (or
    /// a null `argv`) gives an empty line where every query answers as at its end.
    DUNXArgs(int argc, char** argv);
    DUNXArgs(const DUNXArgs& other) = default;
    DUNXArgs& operator=(const DUNXArgs& other) = default;
    /// Forgets the vector.
    ~DUNXArgs();

    /// The next argument, or null after the last.
    char* GetNextArg();
    /// Finds the next option among `count` `options`, skipping plain arguments
    /// and unknown options: true with `*index` its position in the list, or
    /// false with `*index` -1 once the last argument has been examined.
    bool GetNextOption(int count, char** options, int* index);
    /// When the argument after the current one does not begin with '-', gives it
    /// in `*argument`, moves past it and answers true; otherwise false and
    /// nothing moves (also at the end of the line).
    bool GetOptionArgument(char** argument);
    /// Moves one argument on; true when there was one.
    bool Shift();

private:
    bool IsAnOption(int count, char** options, const char* argument, int* index) const;
    bool IsLetterAnOption(int count, char** options, char letter, int* index) const;
    const char* At(int i) const;

    int m_LastIndex;
    char** m_Argv;
    int m_Current = 0;
    int m_LastOptionIndex = 0;
    bool m_InCluster = false;
    char m_ClusterLetter = '?';
    int m_ClusterPos = 0;
};
