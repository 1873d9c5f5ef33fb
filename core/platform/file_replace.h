// Whole files read and put in place.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace quillmere {

// Reads all bytes of a regular file. The error is std::errc::no_such_file_or_directory if there is
// none; a folder, a pipe and the like are errors too, and are not opened.
std::error_code ReadWholeFile(const std::filesystem::path& file, std::string& bytes);

// Gives the file this content: writes a file of a pending name beside it, brings it to the disk
// and renames it, so that at every moment either the old or the new content stands there whole.
// Missing folders are made; the access rights of the old file are kept; a symbolic link stays a
// link, and its target is replaced. A file that the user may not write is an error, even where the
// rename would be allowed.
std::error_code ReplaceFileContent(const std::filesystem::path& file, std::string_view bytes);

// Makes way for a new content: a file of that name becomes FILE.BAK, in place of an older one of that
// name. Where the older one cannot be deleted, the first free name of FILE1.BAK, FILE2.BAK and so on
// is taken. No file, or a folder of that name, is no error and nothing is done.
std::error_code BackupBeforeSave(const std::filesystem::path& file);

// ReplaceFileContent with a backup of the old content by the rule of BackupBeforeSave, for files of
// the user's own work: at every moment, also if the program or the machine ends in the middle, one
// whole file, old or new, stands under the name, and the older backup is there until the newer takes
// its place. The new content is on the disk before the old one loses its name. After an error the
// file is as it was, but the backup may already be the newer one; only where the new name could not
// be brought to the disk the new content stands there in spite of the error.
// *cannotOpen (may be null) tells whether a failure is that the file could not be opened for writing.
std::error_code ReplaceFileKeepingBackup(const std::filesystem::path& file,
                                         std::string_view bytes,
                                         bool* cannotOpen = nullptr);

}  // namespace quillmere
