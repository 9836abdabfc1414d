// The texts of the library reach hosts, and its trace, as the compiler encoded them.
static_assert(sizeof "é" == 2,
              "texts are ISO-8859-1: compile with -fexec-charset=ISO-8859-1, or through cmake/clang-latin1");
