#define IDB_HILLS 200
#define IDB_SUN 201
