// Nothing: what is linked around it is one folder of the library and those below.
namespace {}
