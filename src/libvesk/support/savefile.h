// A file that is replaced as a whole: what is written stands beside it, under its name with ".saving" behind
// it, and takes its name once all of it is on the disk, so that neither a full disk nor a crash costs what
// was there before. Links are followed, and mode and owner stay; a new file is for its owner alone. Where no
// file can be made or moved in (a second name of the file, a folder that is not ours to change), the old one
// is written over in place.
#pragma once

#include <cstdio>
#include <string>

#include "libvesk/support/types.h"

class SAVEFILE {
  public:
    explicit SAVEFILE(const std::string& name);
    ~SAVEFILE();  // what was not kept is thrown away
    SAVEFILE(const SAVEFILE&) = delete;
    SAVEFILE& operator=(const SAVEFILE&) = delete;

    // Removes what a program that was killed while it saved left beside the file.
    static void clean_up(const std::string& name);

    // The file to write to; null (errno says why) when the file may not be written: EWOULDBLOCK while another
    // program saves it.
    [[nodiscard]] std::FILE* file() { return file_; }
    // Puts what was written in the file's place; nothing can be written any more. FALSE (errno says why) when
    // any of it could not be written.
    [[nodiscard]] BOOL keep();

  private:
    int open_beside();
    int give_up(int fd);

    std::string target_;
    std::string beside_;  // "" while writing in place; the open file holds its lock
    std::FILE* file_ = nullptr;
};
