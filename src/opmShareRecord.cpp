#include "opmShareRecord.h"

#include <cstdio>
#include <cstdlib>

#include <sys/ipc.h>
#include <sys/shm.h>

key_t Getkey()
{
    const key_t key = ftok(".", 1);
    if (key == -1) {
        perror("ftok");
        return -1;
    }
    return key;
}

char* IpcGetAddr(key_t key_word)
{
    if (key_word == -1) {
        perror("ftok");
        exit(-1);
    }
    const int shmid = shmget(key_word, kOpmShareSegmentSize, IPC_CREAT | 0666);
    if (shmid == -1) {
        perror("shmget");
        exit(-1);
    }
    char* addr = static_cast<char*>(shmat(shmid, 0, 0));
    if (addr == reinterpret_cast<char*>(-1)) {
        perror("shmat");
        if (shmctl(shmid, IPC_RMID, 0) == -1)
            perror("shmctl");
    }
    return addr;
}

bool isShareMemAttached(const void* addr)
{
    return addr != 0 && addr != reinterpret_cast<const void*>(-1);
}
