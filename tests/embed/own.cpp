// The parent project's own library, built as whatever kind BUILD_SHARED_LIBS says.
int embedAnswer() { return 1; }
