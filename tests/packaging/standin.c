/* Stands in for libtqomacp.so (or, with STANDIN_LIBC, for the C library it
   links against) where a check needs a shared library linked a given way. */
#ifdef STANDIN_LIBC
int tqomacp_standin_import(void) { return 1; }
#else
int tqomacp_standin_import(void);
int tqomacp_standin(void) { return tqomacp_standin_import() + 1; }
#endif
