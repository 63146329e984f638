// The static members of the emulator and the database, in the order in which they are built when
// the library is loaded; they are destroyed in the reverse order when it is unloaded.
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

ZetNorvDb_Table ZetNorvDb::_database(
    10, MString("coid,compid,partNumber,name,pathFile,uuid,table,type,timestamp,info"));
ZetNorvDb_Table ZetNorvEmul::_ids(2, MString("identifier,info"));
ZetNorvDb_Table ZetNorvEmul::_idsRef(2, MString("identifier,info"));

MString ZetNorvDb::_refFile;
MString ZetNorvDb::_path;
MString ZetNorvDb::_copyFile;
MString ZetNorvDb::_S_PART_NUMBER;
int ZetNorvDb::_nbLoad = 0;

MString ZetNorvEmul::_date;
int ZetNorvEmul::_nOp = 0;
int ZetNorvEmul::_posCursPre = 0;
int ZetNorvEmul::_posCursPost = 0;
int ZetNorvEmul::_posKavFirst = 0;
