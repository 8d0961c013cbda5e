#pragma once

#include "CU/Platform.h"

// How another process asks for variables: with WM_COPYDATA, sent to the message window, whose data
// are a CUProberRequest. The answer is laid into a section, shared memory that the asked program
// has made; the message's own result says which answer it is. So the program never waits for who
// asks, and nobody else can write to what it has laid there.
//
// Why not WM_COPYDATA back: the program would wait for a window of somebody else's, and the system
// lets no such message from a program up to a more privileged one. Reading a section is allowed in
// both directions, and this works from Windows 95 on. The request's message is let up from Windows
// 7 on, which can do so for a single window. Nobody is let up to set a value: that takes another
// message (see CU_PROBER_SET_MESSAGE), which the system keeps back.
//
// Whoever reads such bytes trusts none of them.

const ULONG_PTR CU_PROBER_ASK = 0x43555051;  // dwData of the request
const DWORD CU_PROBER_VERSION = 1;
const DWORD CU_PROBER_SECTION_SIZE = 0x10000;
const DWORD CU_PROBER_LONGEST_TEXT = 4000;
// A section's name, of the message window's handle.
const char CU_PROBER_SECTION[] = "CUProber-%08lx";
const char CU_MESSAGE_WINDOW_CLASS[] = "CUMessageWindow";

// The result of a request that came while another was being answered: it is to be sent again. (A
// function that computes a value may look for messages.)
const LRESULT CU_PROBER_BUSY = -1;

enum CUProberWhat : DWORD
{
    CU_PROBER_HELLO = 1,  // no data; answer: process identifier, program's path
    CU_PROBER_LIST,  // argument: the last number so far; answer: CUProberListed, as many as fit
    CU_PROBER_READ,  // data: numbers; answer: count, CUProberItem for each, texts
    // argument: number, data: text. Lays the text aside for CU_PROBER_SET_MESSAGE; the result is
    // what that has to bring in its first word. After CU_PROBER_STAGED more requests it may be
    // gone.
    CU_PROBER_STAGE
};

struct CUProberRequest
{
    DWORD nWhat;
    DWORD nArgument;
    // data follow
};

// At the beginning of the section.
struct CUProberAnswer
{
    volatile LONG nAnswer;  // which one it is, the message's result; 0 while it is written
    DWORD nVersion;
    DWORD nTree;   // changes with every variable that comes or goes
    DWORD nCount;  // of variables
    DWORD nSize;   // of the data, in bytes
    // data follow
};
const DWORD CU_PROBER_ROOM = CU_PROBER_SECTION_SIZE - sizeof(CUProberAnswer);

// What is known of a variable. Path, name, description, unit and default follow, each with a NUL,
// and up to three bytes, to the next multiple of four.
struct CUProberListed
{
    DWORD nSize;  // with the texts
    DWORD nID;
    DWORD nKind;  // CUProberKind, and the bits below
};
const DWORD CU_PROBER_COMPUTED_BIT = 0x100;
const DWORD CU_PROBER_OPEN_BIT = 0x200;
const int CU_PROBER_TEXTS = 5;

// A value.
struct CUProberItem
{
    DWORD nState;  // CUProberResult, and CUProberKind in the second byte
    DWORD nLow;    // the value's bytes; of a text where it begins in the data, and its length
    DWORD nHigh;
};

const int CU_PROBER_STAGED = 16;
// Answers a CUProberResult and 1; 0 where no text was laid aside under the number in the first
// word.
const char CU_PROBER_SET_MESSAGE[] = "CUProberSet";
