extern "C" unsigned int functionOfGoneLibrary();
extern "C" unsigned int functionOfGoneLibrary() { return 0; }
