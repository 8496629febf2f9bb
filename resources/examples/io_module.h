/*
 * Application variables of the example I/O module, which the generated object dictionary points
 * to. The application defines them.
 */
#ifndef IO_MODULE_H
#define IO_MODULE_H 1

/* the CANopen headers, which are included before this one, name the types */

#define IO_GROUPS 4u

typedef struct
{
    INTEGER8 lowestTemperature;
    INTEGER8 highestTemperature;
    UNSIGNED16 lowestSupply;
    UNSIGNED16 highestSupply;
    UNSIGNED32 busOffCount;
    UNSIGNED8 reset;
} IO_DIAGNOSTICS_T;

extern UNSIGNED32 ioStatusRegister;
extern UNSIGNED32 ioSerialNumber;

extern INTEGER8 ioBoardTemperature;
extern INTEGER24 ioGroundOffset;
extern INTEGER32 ioPulseCounter;
extern UNSIGNED16 ioSupplyVoltage;
extern UNSIGNED24 ioOperatingMinutes;
extern UNSIGNED32 ioSwitchingCycles;
extern UNSIGNED48 ioHardwareAddress;
extern UNSIGNED64 ioControllerSerial;
extern REAL32 ioReferenceVoltage;
extern IO_DIAGNOSTICS_T ioDiagnostics;
extern UNSIGNED16 ioGroupCurrent[IO_GROUPS];
extern UNSIGNED32 ioServiceKey;
extern UNSIGNED32 ioInterruptSource;

/* texts with room for the terminating zero */
extern char ioMountingLocation[33];
extern char ioDisplayText[49];
extern char ioChannelLabel[IO_GROUPS][17];
extern UNSIGNED8 ioCalibrationKey[16];
extern UNSIGNED8 ioEventLog[4096];
extern UNSIGNED8 ioCalibrationData[512];

extern UNSIGNED8 ioDigitalInput[IO_DIGITAL_BYTES];
extern UNSIGNED8 ioDigitalOutput[IO_DIGITAL_BYTES];
extern INTEGER16 ioAnalogueInput[IO_ANALOGUE_CHANNELS];
extern INTEGER16 ioAnalogueOutput[IO_ANALOGUE_CHANNELS];

#endif /* IO_MODULE_H */
